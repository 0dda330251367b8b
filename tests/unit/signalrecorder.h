// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QMetaMethod>
#include <QObject>
#include <QStringList>

#include <functional>

/**
 * Writes down every signal of one object, in the order in which they are emitted, for tests of the
 * order and of silence.  An entry is the signal's name, followed by a blank and a text for each
 * argument: "setScreen Clock".  The object's destroyed() and objectNameChanged() do not count.
 */
class SignalRecorder : public QObject { // no Q_OBJECT: it answers to method numbers of its own
public:
    /** @p heard is called at every entry, while the sender is still emitting. */
    explicit SignalRecorder(QObject *sender, std::function<void()> heard = nullptr);

    /** The entries so far; the record is empty afterwards. */
    QStringList take();

    int qt_metacall(QMetaObject::Call call, int id, void **arguments) override;

private:
    std::function<void()> m_heard;
    QList<QMetaMethod> m_signals;
    QStringList m_entries;
};
