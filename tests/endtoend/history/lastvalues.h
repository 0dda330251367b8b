// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "step.h"

#include <QMap>

/**
 * What is left of a history: the last value of each topic, of all that still holds.
 *
 * Commands hold for a moment only.  A zone that a list of zones does not name is gone with all that
 * was told about it; what is told later is about a new one.
 */
class LastValues {
public:
    LastValues() = default;
    explicit LastValues(const History &history);

    void add(const Step &step);

    bool has(const QString &topic) const { return m_values.contains(topic); }
    /** Empty when nothing has been published. */
    QByteArray value(const QString &topic) const { return m_values.value(topic); }
    /** The last values as messages, in the order of their topics. */
    History messages() const;

    /** The available zones: ids by display name. */
    const QMap<QString, QString> &availableZones() const { return m_available; }

private:
    void dropStaleZones();

    QMap<QString, QByteArray> m_values;
    QMap<QString, QString> m_available;
};
