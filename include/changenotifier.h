// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>

/**
 * Reports changes of a value whose owner has no signal of its own for it, because the signals in
 * its meta-object are an interface that stays as it is. The owner emits, in its own thread.
 */
class ChangeNotifier : public QObject {
    Q_OBJECT

public:
    using QObject::QObject;

signals:
    /** The value has changed, and the new one can be read. Not emitted for an equal value. */
    void changed();
};
