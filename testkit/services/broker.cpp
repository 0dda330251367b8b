// SPDX-License-Identifier: GPL-3.0-or-later
#include "testkit/services/broker.h"

#include "simulator/services/appliancelink.h"
#include "simulator/services/topics.h"
#include "testkit/services/brokerclient.h"
#include "testkit/services/mqttreference.h"
#include "testkit/waiting.h"

#include <QFile>
#include <QSet>
#include <QStandardPaths>

#include <cstdio>

Broker::Broker(Log log, QObject *parent)
    : QObject(parent)
    , m_log(log)
{
}

Broker::~Broker()
{
    failOnObjections();
    if (!QTest::currentTestFailed())
        return;
    std::fprintf(stderr, "The broker's log, %d lines:\n", lines().size());
    for (const QString &line : lines())
        std::fprintf(stderr, "    %s\n", qUtf8Printable(line));
}

bool Broker::start()
{
    QString program = QStandardPaths::findExecutable(QStringLiteral("mosquitto"));
    if (program.isEmpty())
        program = QStandardPaths::findExecutable(
            QStringLiteral("mosquitto"), { QStringLiteral("/usr/sbin") });
    if (program.isEmpty()) {
        qWarning("mosquitto is missing (package mosquitto)");
        return false;
    }
    QFile configuration(m_directory.filePath(QStringLiteral("mosquitto.conf")));
    // The user must be named: root of a user namespace cannot become the user "mosquitto".
    // Without a limit on queued messages nothing that a test publishes in one go is dropped.
    const QByteArray logTypes = m_log == Packets
        ? "log_type all\n"
        : "log_type error\nlog_type warning\nlog_type information\nlog_type subscribe\n";
    if (!configuration.open(QIODevice::WriteOnly)
        || configuration.write("listener 1883 " + m_address
               + "\n"
                 "allow_anonymous true\n"
                 "user root\n"
                 "persistence false\n"
                 "set_tcp_nodelay true\n"
                 "max_queued_messages 0\n"
                 "log_dest stderr\n"
                 "log_timestamp false\n"
               + logTypes + m_moreConfiguration)
            < 0) {
        qWarning("cannot write the broker's configuration");
        return false;
    }
    configuration.close();
    return m_process.start(program, { QStringLiteral("-c"), configuration.fileName() },
               QProcessEnvironment::systemEnvironment())
        && waitForLine(QRegularExpression(QStringLiteral("^mosquitto version .* running$")));
}

bool Broker::stop()
{
    return end(SIGTERM);
}

bool Broker::kill()
{
    return end(SIGKILL);
}

QStringList Broker::lines(const QRegularExpression &expression) const
{
    return lines().filter(expression);
}

bool Broker::waitForLine(const QRegularExpression &expression)
{
    const bool found = waitUntil([&] {
        return !lines(expression).isEmpty() || !m_process.isRunning();
    }) && !lines(expression).isEmpty();
    if (!found)
        qWarning("the broker did not log %s", qUtf8Printable(expression.pattern()));
    return found;
}

QStringList Broker::objections(Publishers allowed) const
{
    if (allowed == Everybody)
        return {};
    static const QRegularExpression publication(QStringLiteral(
        "^Received PUBLISH from (\\S+) \\(d\\d, q(\\d), r(\\d), m\\d+, '(Velunor/.*)', "));
    static const QString marker = Topics::settings("end_of_");
    QStringList found;
    QSet<QString> seen; // the same topic comes thousands of times
    for (const QString &line : lines()) {
        const QRegularExpressionMatch match = publication.match(line);
        const QString client = match.captured(1);
        const bool byServices = client.startsWith(BrokerClient::idPrefix())
            || client.startsWith(ApplianceLink::idPrefix());
        if (!match.hasMatch() || (allowed == Services && byServices))
            continue;
        const QString topic = match.captured(4);
        const QString message = topic + match.captured(2) + match.captured(3);
        // Tests see by a key that means nothing that all before it has been handled.
        if (topic.startsWith(marker) || seen.contains(message))
            continue;
        seen.insert(message);
        const QString objection = MqttReference::instance().objection(
            topic, match.captured(2).toInt(), match.captured(3) == QLatin1String("1"));
        if (!objection.isEmpty())
            found.append(topic + QLatin1Char(' ') + objection);
    }
    return found;
}

void Broker::failOnObjections() const
{
    for (const QString &objection : objections(m_undocumentedAllowed))
        QTest::qFail(qPrintable(objection), __FILE__, __LINE__);
}

bool Broker::end(int signal)
{
    failOnObjections();
    m_process.sendSignal(signal);
    return m_process.waitForExit();
}
