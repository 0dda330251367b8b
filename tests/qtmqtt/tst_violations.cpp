// SPDX-License-Identifier: GPL-3.0-or-later
#include "fakebroker.h"
#include "loggedclient.h"
#include "oursalone.h"

#include <QtTest/QtTest>

namespace {
const QStringList Attempt { "stateChanged(Connecting)" };
const QStringList Success { "stateChanged(Connected)", "connected" };
const QStringList Violation { "stateChanged(Disconnected)", "disconnected",
    "errorChanged(ProtocolViolation)" };

const QByteArray Acceptance = FakeBroker::acceptance();
const QByteArray Message = FakeBroker::message("t", "x");
} // namespace

/** What no broker may send ends the connection, as a violation of the protocol. */
class TestViolations : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void endsTheConnection_data();
    void endsTheConnection();
};

void TestViolations::endsTheConnection_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QStringList>("before"); // what the client tells before the violation
    const QStringList accepted = Attempt + Success;
    const QStringList served = accepted + QStringList { "message x" };
    QTest::newRow("accepted twice at once") << Acceptance + Acceptance + Message << accepted;
    QTest::newRow("accepted again later") << Acceptance + Message + Acceptance + Message << served;
    QTest::newRow("reserved flag") << QByteArray::fromHex("20020200") + Message << Attempt;
    QTest::newRow("all flags") << QByteArray::fromHex("2002ff00") << Attempt;
    if (IsModule)
        return;
    QTest::newRow("refused after acceptance")
        << Acceptance + Message + QByteArray::fromHex("20020005") << served;
    QTest::newRow("reserved flag, refused") << QByteArray::fromHex("20028005") << Attempt;
    QTest::newRow("topic is not UTF-8")
        << Acceptance + Message + FakeBroker::message("\xff", "y") + Message << served;
    QTest::newRow("request of a client") << Acceptance + QByteArray::fromHex("8200") << accepted;
}

void TestViolations::endsTheConnection()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QStringList, before);
    FakeBroker peer;
    peer.setAnswer(bytes);
    LoggedClient client(peer.port());
    client.connectToHost();
    QTRY_COMPARE(client.log.entries(), before + Violation);
    QTRY_VERIFY(peer.isDeserted());
    QCOMPARE(client.log.entries(), before + Violation);
}

QTEST_GUILESS_MAIN(TestViolations)
#include "tst_violations.moc"
