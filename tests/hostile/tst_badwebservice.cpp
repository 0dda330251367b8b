// SPDX-License-Identifier: GPL-3.0-or-later
#include "ordeal.h"

#include <QTcpServer>
#include <QTcpSocket>

using namespace PageNames;

namespace {

const QByteArray Chunk(1 << 20, 'x');

} // namespace

/** The update badge, where the appliance's own web service is not what it should be. */
class TestBadWebService : public Ordeal {
    Q_OBJECT

private slots:
    void doesNoHarm_data();
    void doesNoHarm();
};

void TestBadWebService::doesNoHarm_data()
{
    QTest::addColumn<bool>("there");
    QTest::addColumn<QByteArray>("answer"); // its beginning; what follows has no end
    QTest::addColumn<QString>("error");     // that ends each request
    QTest::newRow("absent") << false << QByteArray() << QString("ConnectionRefusedError");
    QTest::newRow("hanging") << true << QByteArray() << QString();
    QTest::newRow("endless") << true << QByteArray("HTTP/1.1 200 OK\r\n\r\n")
                             << QString("OperationCanceledError");
}

void TestBadWebService::doesNoHarm()
{
    QFETCH(bool, there);
    QFETCH(QByteArray, answer);
    QFETCH(QString, error);
    QTcpServer service;
    connect(&service, &QTcpServer::newConnection, this, [&] {
        QTcpSocket *const socket = service.nextPendingConnection();
        if (answer.isEmpty())
            return;
        const auto sendMore = [socket] {
            if (socket->bytesToWrite() < Chunk.size())
                socket->write(Chunk);
        };
        socket->write(answer);
        connect(socket, &QTcpSocket::bytesWritten, socket, sendMore);
    });
    if (there)
        QVERIFY(service.listen(QHostAddress::LocalHost, 8080));
    QVERIFY(startPlayer());
    house().publishState("UpdateAvailable", "true");
    QTRY_VERIFY_WITH_TIMEOUT(probe().shows("updateBadge"), PatienceMs);
    for (int i = 0; i < 20; ++i)
        QVERIFY(probe().tap("updateBadge"));
    if (!error.isEmpty()) {
        const LogPattern failed
            = Line::critical("ApiClient::onFinish() something went wrong: " + error);
        QTRY_COMPARE_WITH_TIMEOUT(program().count(failed), 20, PatienceMs);
    }
    QVERIFY(comesThrough(Player, { 16, 8 }));
}

QTEST_GUILESS_MAIN(TestBadWebService)
#include "tst_badwebservice.moc"
