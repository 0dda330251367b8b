// SPDX-License-Identifier: GPL-3.0-or-later
#include "apiclient.h"
#include "modelclasstest.h"
#include "testkit/services/apiserver.h"

#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTest>

#include <memory>

namespace {

const QString Called = QStringLiteral("info: ApiClient::installUpdate()");
const QString Received = QStringLiteral("info: ApiClient::onFinish() received reply for: "
                                        "http://127.0.0.1:8080/api/install_update_v1");
const QString Wrong = QStringLiteral("critical: ApiClient::onFinish() something went wrong: ");

} // namespace

class TestApiClient : public ModelClassTest {
    Q_OBJECT

    std::unique_ptr<QObject> make() const override { return std::make_unique<ApiClient>(); }
    QStringList methodEntries() const override
    {
        return { "private slot onFinish(QNetworkReply*)" };
    }

private slots:
    void init();
    void cleanup();

    void instanceIsOneObject() { checkInstance<ApiClient>(); }
    void managerLivesWithTheClient();
    void postsAnEmptyBody();
    void withoutServiceTheErrorIsNamed();
    void serviceErrorIsNamed_data();
    void serviceErrorIsNamed();
    void closedConnectionIsAnError();
    void twoCallsAreTwoRequests();
    void callAfterAFailureSendsAgain();
    void doesNotWaitForTheReply();
    void repliesAreReleased();

private:
    std::unique_ptr<ApiClient> m_client;
};

void TestApiClient::init()
{
    ModelClassTest::init();
    m_client.reset(new ApiClient);
    m_log->clear();
}

void TestApiClient::cleanup()
{
    m_client.reset();
    ModelClassTest::cleanup();
}

void TestApiClient::managerLivesWithTheClient()
{
    QCOMPARE(m_client->findChildren<QNetworkAccessManager *>(QString(), Qt::FindDirectChildrenOnly)
                 .size(),
        1);
}

void TestApiClient::postsAnEmptyBody()
{
    ApiServer service;
    QVERIFY(service.start());
    m_client->installUpdate();
    QCOMPARE(m_log->take(), QStringList({ Called })); // returned at once
    QTRY_COMPARE(service.requests().size(), 1);
    const HttpServer::Request request = service.requests().first();
    QCOMPARE(request.line, QByteArray("POST /api/install_update_v1 HTTP/1.1"));
    QCOMPARE(request.body, QByteArray());
    QCOMPARE(request.headers.value("content-length"), QByteArray("0"));
    QVERIFY(!request.headers.contains("content-type"));
    QVERIFY(!request.headers.contains("authorization"));
    QVERIFY(!request.headers.contains("cookie"));
    QTRY_COMPARE(m_log->count(Received), 1);
}

void TestApiClient::withoutServiceTheErrorIsNamed()
{
    m_client->installUpdate();
    QCOMPARE(m_log->take(), QStringList({ Called }));
    QTRY_COMPARE(m_log->lines().size(), 2);
    QCOMPARE(m_log->take(), QStringList({ Received, Wrong + "ConnectionRefusedError" }));
}

void TestApiClient::serviceErrorIsNamed_data()
{
    QTest::addColumn<int>("status");
    QTest::addColumn<QString>("name");
    QTest::newRow("200") << 200 << "";
    QTest::newRow("204") << 204 << "";
    QTest::newRow("401") << 401 << "AuthenticationRequiredError";
    QTest::newRow("403") << 403 << "ContentAccessDenied";
    QTest::newRow("404") << 404 << "ContentNotFoundError";
    QTest::newRow("405") << 405 << "ContentOperationNotPermittedError";
    QTest::newRow("409") << 409 << "ContentConflictError";
    QTest::newRow("418") << 418 << "ProtocolInvalidOperationError";
    QTest::newRow("500") << 500 << "InternalServerError";
    QTest::newRow("501") << 501 << "OperationNotImplementedError";
    QTest::newRow("503") << 503 << "ServiceUnavailableError";
    QTest::newRow("599") << 599 << "UnknownServerError";
}

void TestApiClient::serviceErrorIsNamed()
{
    QFETCH(int, status);
    QFETCH(QString, name);
    ApiServer service;
    service.setStatus(status);
    QVERIFY(service.start());
    QStringList expected { Called, Received };
    if (!name.isEmpty())
        expected.append(Wrong + name);
    m_client->installUpdate();
    QTRY_COMPARE(m_log->lines().size(), expected.size());
    QCOMPARE(m_log->take(), expected);
    QCOMPARE(service.requests().size(), 1); // nothing is tried again
}

void TestApiClient::closedConnectionIsAnError()
{
    QTcpServer service;
    QVERIFY(service.listen(QHostAddress::LocalHost, 8080));
    connect(&service, &QTcpServer::newConnection, this, [&] {
        QTcpSocket *const socket = service.nextPendingConnection();
        connect(socket, &QTcpSocket::readyRead, socket, &QTcpSocket::close);
    });
    m_client->installUpdate();
    QTRY_COMPARE(m_log->lines().size(), 3);
    QCOMPARE(m_log->take(), QStringList({ Called, Received, Wrong + "RemoteHostClosedError" }));
}

void TestApiClient::twoCallsAreTwoRequests()
{
    ApiServer service;
    QVERIFY(service.start());
    m_client->installUpdate();
    m_client->installUpdate();
    QCOMPARE(m_log->take(), QStringList({ Called, Called }));
    QTRY_COMPARE(m_log->count(Received), 2);
    QCOMPARE(service.requests().size(), 2);
    QCOMPARE(service.requests().at(0).line, service.requests().at(1).line);
}

void TestApiClient::callAfterAFailureSendsAgain()
{
    m_client->installUpdate();
    QTRY_COMPARE(m_log->lines().size(), 3);
    m_log->take();
    ApiServer service;
    QVERIFY(service.start());
    m_client->installUpdate();
    QTRY_COMPARE(m_log->count(Received), 1);
    QCOMPARE(service.requests().size(), 1);
}

void TestApiClient::doesNotWaitForTheReply()
{
    QTcpServer silent;
    QVERIFY(silent.listen(QHostAddress::LocalHost, 8080));
    m_client->installUpdate();
    QTRY_VERIFY(silent.hasPendingConnections());
    QCOMPARE(m_log->take(), QStringList({ Called }));
    m_client.reset(); // a request on its way does not outlive the client
    QCoreApplication::processEvents();
    QCOMPARE(m_log->take(), QStringList());
}

void TestApiClient::repliesAreReleased()
{
    for (int i = 0; i < 5; ++i)
        m_client->installUpdate();
    QCOMPARE(m_client->findChildren<QNetworkReply *>().size(), 5);
    QTRY_COMPARE(m_client->findChildren<QNetworkReply *>().size(), 0);
    QCOMPARE(m_log->count(Wrong + "ConnectionRefusedError"), 5);
    m_log->clear();
}

QTEST_GUILESS_MAIN(TestApiClient)
#include "tst_apiclient.moc"
