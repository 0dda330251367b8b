// SPDX-License-Identifier: GPL-3.0-or-later
#include "address.h"
#include "fakebroker.h"
#include "stubbornlistener.h"

#include <QtCore/QDir>
#include <QtCore/QProcess>
#include <QtTest/QtTest>

namespace {
/** The sockets that a program started by this one finds open, as the kernel names them. */
QStringList inheritedSockets()
{
    QProcess child;
    child.start(QStringLiteral("sh"), { "-c", "for i in /proc/self/fd/*; do readlink $i; done" });
    if (!child.waitForFinished())
        qFatal("No child process");
    return QString::fromLocal8Bit(child.readAllStandardOutput())
        .split('\n')
        .filter(QStringLiteral("socket:"));
}

int ownSockets()
{
    int count = 0;
    const QDir folder(QStringLiteral("/proc/self/fd"));
    for (const QFileInfo &entry : folder.entryInfoList(QDir::AllEntries | QDir::System))
        count += entry.symLinkTarget().contains(QStringLiteral("socket:")) ? 1 : 0;
    return count;
}
} // namespace

/** Programs that the application starts get none of a client's descriptors. */
class TestChildren : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void inheritNothing();
    void inheritNothingWhileConnecting();
};

void TestChildren::inheritNothing()
{
    FakeBroker peer;
    const QStringList inheritedAnyway = inheritedSockets();
    const int before = ownSockets();
    QMqttClient client;
    aim(&client, peer.port());
    for (int i = 0; i < 2; ++i) {
        client.connectToHost();
        QTRY_COMPARE(client.state(), QMqttClient::Connected);
        QVERIFY(ownSockets() > before);
        QCOMPARE(inheritedSockets(), inheritedAnyway);
        peer.closeConnection();
        QTRY_COMPARE(client.state(), QMqttClient::Disconnected);
    }
}

void TestChildren::inheritNothingWhileConnecting()
{
    StubbornListener listener;
    const QStringList inheritedAnyway = inheritedSockets();
    const int before = ownSockets();
    QMqttClient client;
    aim(&client, listener.port());
    client.connectToHost();
    QTRY_VERIFY(ownSockets() > before);
    QCOMPARE(inheritedSockets(), inheritedAnyway);
    QCOMPARE(client.state(), QMqttClient::Connecting);
}

QTEST_GUILESS_MAIN(TestChildren)
#include "tst_children.moc"
