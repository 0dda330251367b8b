// SPDX-License-Identifier: GPL-3.0-or-later
#include "simulator/services/webservice.h"

#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QTest>

#include <memory>

class TestWebService : public QObject {
    Q_OBJECT

private slots:
    void answers_data();
    void answers();
};

void TestWebService::answers_data()
{
    QTest::addColumn<QByteArray>("method");
    QTest::addColumn<QString>("path");
    QTest::addColumn<bool>("possible");
    QTest::addColumn<int>("status");
    QTest::addColumn<int>("installations");
    const QString path = QStringLiteral("/api/install_update_v1");
    QTest::newRow("accepted") << QByteArray("POST") << path << true << 200 << 1;
    QTest::newRow("not possible now") << QByteArray("POST") << path << false << 409 << 1;
    QTest::newRow("other method") << QByteArray("GET") << path << true << 405 << 0;
    QTest::newRow("other path") << QByteArray("POST") << QStringLiteral("/api/install_update_v2")
                                << true << 404 << 0;
}

void TestWebService::answers()
{
    QFETCH(QByteArray, method);
    QFETCH(QString, path);
    QFETCH(bool, possible);
    QFETCH(int, status);
    QFETCH(int, installations);
    int called = 0;
    WebService service([&called, possible](QString *reason) {
        ++called;
        if (!possible)
            *reason = QStringLiteral("not now");
        return possible;
    });
    QVERIFY(service.listen(0));
    QStringList told;
    connect(&service, &WebService::told, this, [&told](const QString &line) { told.append(line); });
    QNetworkAccessManager network;
    const QUrl url(QStringLiteral("http://127.0.0.1:%1%2").arg(service.port()).arg(path));
    const std::unique_ptr<QNetworkReply> reply(
        network.sendCustomRequest(QNetworkRequest(url), method, QByteArray()));
    QTRY_VERIFY(reply->isFinished());
    QCOMPARE(reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt(), status);
    QCOMPARE(called, installations);
    QCOMPARE(told.size(), 1);
    QVERIFY(told.first().contains(path));
}

QTEST_GUILESS_MAIN(TestWebService)
#include "tst_webservice.moc"
