// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QElapsedTimer>
#include <QList>
#include <QSocketNotifier>
#include <QString>
#include <QTemporaryDir>

#include <memory>

/**
 * The service manager's notification socket, as a test sees it: every datagram in order, with its
 * time.
 */
class NotifySocket : public QObject {
    Q_OBJECT

public:
    struct Message {
        QByteArray text;
        qint64 milliseconds; ///< since this object was made
    };

    explicit NotifySocket(QObject *parent = nullptr);
    ~NotifySocket() override;

    /** What goes into NOTIFY_SOCKET. */
    QString path() const { return m_path; }

    const QList<Message> &messages() const { return m_messages; }
    /** How many messages have this text. */
    int count(const QByteArray &text) const;

    /** From now on nothing is read, so that the kernel soon takes no more messages. */
    void stopReading() { m_notifier->setEnabled(false); }
    /** Sends messages of its own until the kernel takes no more; none of them is read. */
    void fill();
    /** Removes the socket's name, as the end of a service manager does. */
    void vanish();

private:
    void receive();

    QTemporaryDir m_directory;
    QString m_path;
    int m_descriptor = -1;
    std::unique_ptr<QSocketNotifier> m_notifier;
    QElapsedTimer m_time;
    QList<Message> m_messages;
};
