// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "testkit/process/process.h"

#include <QRegularExpression>
#include <QTemporaryDir>

#include <csignal>

/**
 * A real mosquitto on port 1883 of 127.0.0.1, or of another address.  It keeps nothing over a
 * restart, and unless told otherwise its log tells every packet: "Received PUBLISH from CLIENT (d0,
 * q1, r0, m2, 'TOPIC', ... (5 bytes))".
 */
class Broker : public QObject {
    Q_OBJECT

public:
    enum Log {
        Packets,       ///< everything
        Subscriptions, ///< "CLIENT 0 FILTER", and who comes and goes; costs nothing for a message
    };

    explicit Broker(Log log = Packets, QObject *parent = nullptr);
    /**
     * Fails the test when a message below "Velunor/" was published that docs/mqtt-api.yaml does not
     * describe so.  Prints the broker's log when the test has failed.
     */
    ~Broker() override;

    enum Publishers {
        Nobody,
        Services, ///< test and simulator, by their client ids, but not the program
        Everybody,
    };
    /** For a test that publishes what the document does not know, or other than it says. */
    void allowUndocumented(Publishers by = Services) { m_undocumentedAllowed = by; }
    /**
     * The messages of this run, but for those of these publishers, that docs/mqtt-api.yaml does not
     * describe so: topic and reason.
     */
    QStringList objections(Publishers allowed = Nobody) const;

    /** To be called before start(), as is the next: listens on another address of this machine. */
    void setAddress(const QByteArray &address) { m_address = address; }
    /** More lines for its configuration, as a file beside it would hold them. */
    void configure(const QByteArray &lines) { m_moreConfiguration = lines; }

    /** Starts the broker and waits until it listens; false, with a message, when it does not. */
    bool start();
    /** Ends it with SIGTERM, or without warning with SIGKILL, and waits until it is gone. */
    bool stop();
    bool kill();
    /** Stops it in the middle of whatever it does, with all connections open, and lets it go on. */
    void freeze() { m_process.sendSignal(SIGSTOP); }
    void thaw() { m_process.sendSignal(SIGCONT); }

    /** The log of this run, without time stamps. */
    const QStringList &lines() const { return m_process.lines(); }
    /** The lines that match, in order. */
    QStringList lines(const QRegularExpression &expression) const;
    /** Waits until a line matches; false, with a message, when none comes. */
    bool waitForLine(const QRegularExpression &expression);

private:
    bool end(int signal);
    void failOnObjections() const;

    const Log m_log;
    Publishers m_undocumentedAllowed = Nobody;
    QByteArray m_address = QByteArrayLiteral("127.0.0.1");
    QByteArray m_moreConfiguration;
    Process m_process;
    QTemporaryDir m_directory;
};
