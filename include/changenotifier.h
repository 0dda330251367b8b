// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>

/**
 * Tells of the changes of a value whose owner has no signal for it, because the signals of its
 * meta-object are an interface that stays as it is.  Emitted by the owner, in its thread.
 */
class ChangeNotifier : public QObject {
    Q_OBJECT

public:
    using QObject::QObject;

signals:
    /** The value has changed, and can be read already. */
    void changed();
};
