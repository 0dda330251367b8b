// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QJsonArray>
#include <QObject>
#include <QPointer>

/** Counts the emissions of signals, whatever their names, in the GUI thread. */
class SignalCounter : public QObject {
    Q_OBJECT

public:
    using QObject::QObject;

    /**
     * Begins anew, with these signals of the object, which must have no arguments; false when the
     * object lacks one of them.
     */
    bool listen(const QObject *object, const QJsonArray &names);
    int count() const { return m_count; }

private slots:
    void increment() { ++m_count; }

private:
    QPointer<const QObject> m_object;
    int m_count = 0;
};
