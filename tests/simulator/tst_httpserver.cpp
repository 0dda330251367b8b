// SPDX-License-Identifier: GPL-3.0-or-later
#include "simulator/http/httpserver.h"

#include <QDir>
#include <QRandomGenerator>
#include <QTcpSocket>
#include <QTest>
#include <QTimer>

#include <memory>

namespace {

constexpr int Limit = 64 * 1024;            // bytes of a request
constexpr int LargeBody = 16 * 1024 * 1024; // more than the sockets of both sides hold

const QByteArray Get = "GET /now HTTP/1.1\r\n\r\n";
const QByteArray GetLater = "GET /later HTTP/1.1\r\n\r\n";
const QByteArray GetNever = "GET /never HTTP/1.1\r\n\r\n";

/** Answers by the target: /now, /later, /twice, /large; drops at /drop and never answers else. */
class Server : public HttpServer {
public:
    QList<Request> asked;

protected:
    void answer(const Request &request, QTcpSocket *socket) override
    {
        asked.append(request);
        const QByteArray body = request.method + ' ' + request.target;
        if (request.target == "/now")
            respond(socket, 200, "text/plain", body);
        else if (request.target == "/later")
            QTimer::singleShot(
                20, socket, [this, socket, body] { respond(socket, 200, "text/plain", body); });
        else if (request.target == "/large")
            respond(socket, 200, "text/plain", QByteArray(LargeBody, 'x'));
        else if (request.target == "/twice") {
            respond(socket, 200, "text/plain", "first");
            respond(socket, 200, "text/plain", "second");
        } else if (request.target == "/drop") {
            socket->abort();
            respond(socket, 200, "text/plain", "too late");
        }
    }
};

/** How many descriptors this process has open. */
int descriptors()
{
    return QDir(QStringLiteral("/proc/self/fd"))
        .entryList(QDir::NoDotAndDotDot | QDir::AllEntries)
        .size();
}

QByteArray answerOf(const QByteArray &body)
{
    return "HTTP/1.1 200 OK\r\nContent-Type: text/plain\r\nContent-Length: "
        + QByteArray::number(body.size()) + "\r\n\r\n" + body;
}

/** A request of so many bytes, most of them in a header. */
QByteArray requestOfSize(int size)
{
    const QByteArray start = "GET /now HTTP/1.1\r\nFiller: ";
    return start + QByteArray(size - start.size() - 4, 'x') + "\r\n\r\n";
}

} // namespace

class TestHttpServer : public QObject {
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void requestIsReadWhole_data();
    void requestIsReadWhole();
    void whatIsNoRequestIsRefused_data();
    void whatIsNoRequestIsRefused();
    void tooLongRequestIsCutOff_data();
    void tooLongRequestIsCutOff();
    void connectionStaysAsTheClientWishes_data();
    void connectionStaysAsTheClientWishes();
    void answersComeInTheOrderOfTheRequests();
    void requestsBeyondTheLimitAreServedOneByOne();
    void closingSendsTheWholeAnswer();
    void clientThatDoesNotReadGetsOneAnswer();
    void headIsAnsweredWithoutABody();
    void onlyTheFirstAnswerCounts();
    void droppedConnectionGetsNoAnswer();
    void clientMayVanish_data();
    void clientMayVanish();
    void serverMayGoWithOpenConnections_data();
    void serverMayGoWithOpenConnections();
    void takenPortIsReported();
    void anyBytesAreSurvived();

private:
    bool connectClient();
    /** Sends as long as the connection lasts; the server may read after each piece. */
    void send(const QList<QByteArray> &pieces);
    /** All that the client has got up to now. */
    const QByteArray &received() { return m_received += m_client->readAll(); }
    bool isOpen() const { return m_client->state() == QAbstractSocket::ConnectedState; }
    static void letServerRead();
    bool serverAnswersAnother();

    std::unique_ptr<Server> m_server;
    std::unique_ptr<QTcpSocket> m_client;
    QByteArray m_received;
    int m_quiet = 0; // descriptors that are open while there is no connection
};

void TestHttpServer::init()
{
    m_server = std::make_unique<Server>();
    QVERIFY(m_server->listen(0));
    m_quiet = descriptors();
    QVERIFY(connectClient());
}

void TestHttpServer::cleanup()
{
    m_client.reset();
    m_server.reset();
}

bool TestHttpServer::connectClient()
{
    m_received.clear();
    m_client = std::make_unique<QTcpSocket>();
    m_client->connectToHost(QHostAddress::LocalHost, m_server->port());
    return m_client->waitForConnected();
}

void TestHttpServer::send(const QList<QByteArray> &pieces)
{
    for (const QByteArray &piece : pieces) {
        if (!isOpen())
            return;
        m_client->write(piece);
        m_client->flush();
        QCoreApplication::processEvents();
    }
}

/**
 * What has been sent is on the server's side of the loopback at once; it is accepted, then read.
 */
void TestHttpServer::letServerRead()
{
    for (int turn = 0; turn < 5; ++turn)
        QCoreApplication::processEvents();
}

bool TestHttpServer::serverAnswersAnother()
{
    QTcpSocket other;
    other.connectToHost(QHostAddress::LocalHost, m_server->port());
    other.write(Get);
    return QTest::qWaitFor([&other] { return other.bytesAvailable() > 0; });
}

void TestHttpServer::requestIsReadWhole_data()
{
    QTest::addColumn<QList<QByteArray>>("pieces");
    QTest::addColumn<QByteArray>("method");
    QTest::addColumn<QByteArray>("target");
    QTest::addColumn<QByteArray>("length"); // the header
    QTest::addColumn<QByteArray>("body");
    const auto row = [](const char *name, const QList<QByteArray> &pieces, const char *method,
                         const char *target, const QByteArray &length, const QByteArray &body) {
        QTest::newRow(name) << pieces << QByteArray(method) << QByteArray(target) << length << body;
    };
    const QByteArray post = "POST /now HTTP/1.1\r\nContent-Length: 4\r\n\r\nbody";
    QList<QByteArray> bytes;
    for (const char byte : post)
        bytes.append(QByteArray(1, byte));
    row("at once", { post }, "POST", "/now", "4", "body");
    row("byte by byte", bytes, "POST", "/now", "4", "body");
    row("cut within the method", { "PO", post.mid(2) }, "POST", "/now", "4", "body");
    row("cut within the end of the head", { post.left(40), post.mid(40) }, "POST", "/now", "4",
        "body");
    row("cut before the body", { post.left(41), post.mid(41) }, "POST", "/now", "4", "body");
    row("cut within the body", { post.left(43), post.mid(43) }, "POST", "/now", "4", "body");
    row("no headers", { Get }, "GET", "/now", "", "");
    row("no body", { "POST /now HTTP/1.1\r\nContent-Length: 0\r\n\r\n" }, "POST", "/now", "0", "");
    row("header names in capitals", { "PUT /now HTTP/1.1\r\nCONTENT-LENGTH:4\r\n\r\nbody" }, "PUT",
        "/now", "4", "body");
    row("header of two colons", { "GET /now HTTP/1.1\r\nHost: a:80\r\n\r\n" }, "GET", "/now", "",
        "");
    row("header without a value", { "GET /now HTTP/1.1\r\nAccept:\r\n\r\n" }, "GET", "/now", "",
        "");
    row("end of a head within the body",
        { "POST /now HTTP/1.1\r\nContent-Length: 4\r\n\r\n\r\n\r\n" }, "POST", "/now", "4",
        "\r\n\r\n");
    row("as long as may be", { requestOfSize(Limit) }, "GET", "/now", "", "");
    const QByteArray head = "POST /now HTTP/1.1\r\nContent-Length: 65000\r\n\r\n";
    const QByteArray body(65000, 'b');
    row("long body in pieces", { head, body.left(30000), body.mid(30000) }, "POST", "/now", "65000",
        body);
}

void TestHttpServer::requestIsReadWhole()
{
    QFETCH(QList<QByteArray>, pieces);
    QFETCH(QByteArray, method);
    QFETCH(QByteArray, target);
    QFETCH(QByteArray, length);
    QFETCH(QByteArray, body);
    for (int times = 1; times <= 2; ++times) { // the second time on the same connection
        send(pieces);
        QTRY_COMPARE(m_server->asked.size(), times);
        const HttpServer::Request &request = m_server->asked.last();
        QCOMPARE(request.line, method + ' ' + target + " HTTP/1.1");
        QCOMPARE(request.method, method);
        QCOMPARE(request.target, target);
        QCOMPARE(request.headers.value("content-length"), length);
        QCOMPARE(request.body, body);
        QTRY_COMPARE(received(), answerOf(method + ' ' + target).repeated(times));
    }
    QVERIFY(isOpen());
}

void TestHttpServer::whatIsNoRequestIsRefused_data()
{
    QTest::addColumn<QByteArray>("bytes");
    const auto row = [](const char *name, const QByteArray &bytes) {
        QTest::newRow(name) << bytes + "\r\n\r\n";
    };
    row("nothing", "");
    row("one word", "hello");
    row("two words", "GET /now");
    row("four words", "GET /now or HTTP/1.1");
    row("no target", "GET  HTTP/1.1");
    row("no protocol", "GET /now /then");
    row("other protocol", "GET /now HTTP/2");
    row("bytes of a secure connection", QByteArray("\x16\x03\x01\x00\xa5\x01\x00\x00\xa1", 9));
    row("header without a colon", "GET /now HTTP/1.1\r\nHost");
    row("header without a name", "GET /now HTTP/1.1\r\n: value");
    row("negative length", "POST /now HTTP/1.1\r\nContent-Length: -1");
    row("length of letters", "POST /now HTTP/1.1\r\nContent-Length: many");
    row("empty length", "POST /now HTTP/1.1\r\nContent-Length:");
    row("length beyond all numbers", "POST /now HTTP/1.1\r\nContent-Length: 99999999999999999999");
    row("body in chunks", "POST /now HTTP/1.1\r\nTransfer-Encoding: chunked");
}

void TestHttpServer::whatIsNoRequestIsRefused()
{
    QFETCH(QByteArray, bytes);
    send({ bytes });
    QTRY_COMPARE(int(m_client->state()), int(QAbstractSocket::UnconnectedState));
    QVERIFY2(received().startsWith("HTTP/1.1 400 Bad Request\r\n"), received());
    QCOMPARE(received().count("HTTP/1.1"), 1);
    QCOMPARE(m_server->asked.size(), 0);
    QVERIFY(serverAnswersAnother());
}

void TestHttpServer::tooLongRequestIsCutOff_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<int>("answers"); // before
    QTest::newRow("head without end") << "GET /" + QByteArray(200000, 'x') << 0;
    QTest::newRow("one byte too many") << requestOfSize(Limit + 1) << 0;
    QTest::newRow("announced body")
        << QByteArray("POST /now HTTP/1.1\r\nContent-Length: 65536\r\n\r\n") << 0;
    QTest::newRow("announced huge body")
        << QByteArray("POST /now HTTP/1.1\r\nContent-Length: 9000000000000000000\r\n\r\n") << 0;
    QTest::newRow("after one that is not") << Get + "GET /" + QByteArray(200000, 'x') << 1;
}

void TestHttpServer::tooLongRequestIsCutOff()
{
    QFETCH(QByteArray, bytes);
    QFETCH(int, answers);
    send({ bytes });
    QTRY_COMPARE(int(m_client->state()), int(QAbstractSocket::UnconnectedState));
    QCOMPARE(m_server->asked.size(), answers);
    QVERIFY(serverAnswersAnother());
}

void TestHttpServer::connectionStaysAsTheClientWishes_data()
{
    QTest::addColumn<QByteArray>("rest");
    QTest::addColumn<bool>("stays");
    QTest::newRow("1.1") << QByteArray("HTTP/1.1") << true;
    QTest::newRow("1.1, keep-alive") << QByteArray("HTTP/1.1\r\nConnection: Keep-Alive") << true;
    QTest::newRow("1.1, close") << QByteArray("HTTP/1.1\r\nConnection: close") << false;
    QTest::newRow("1.1, Close") << QByteArray("HTTP/1.1\r\nconnection: Close") << false;
    QTest::newRow("1.0") << QByteArray("HTTP/1.0") << false;
    QTest::newRow("1.0, keep-alive") << QByteArray("HTTP/1.0\r\nConnection: keep-alive") << true;
}

void TestHttpServer::connectionStaysAsTheClientWishes()
{
    QFETCH(QByteArray, rest);
    QFETCH(bool, stays);
    for (const char *target : { "/now", "/later" }) {
        QVERIFY(connectClient());
        const QByteArray request = "GET " + QByteArray(target) + ' ' + rest + "\r\n\r\n";
        const QByteArray answer = answerOf("GET " + QByteArray(target));
        send({ request + request });
        QTRY_COMPARE(received(), answer.repeated(stays ? 2 : 1));
        if (!stays)
            QTRY_VERIFY(!isOpen());
        QCOMPARE(isOpen(), stays);
    }
}

void TestHttpServer::answersComeInTheOrderOfTheRequests()
{
    send({ GetLater + Get + GetLater + Get });
    QTRY_COMPARE(received(),
        answerOf("GET /later") + answerOf("GET /now") + answerOf("GET /later")
            + answerOf("GET /now"));
}

void TestHttpServer::requestsBeyondTheLimitAreServedOneByOne()
{
    constexpr int Count = 20000;
    QVERIFY(Count * Get.size() > 5 * Limit);
    send({ Get.repeated(Count) });
    QTRY_COMPARE_WITH_TIMEOUT(
        received().size(), Count * answerOf("GET /now").size(), 60000); // sanitizers are slow
    QCOMPARE(m_server->asked.size(), Count);
}

void TestHttpServer::closingSendsTheWholeAnswer()
{
    send({ "GET /large HTTP/1.0\r\n\r\n" });
    QTRY_VERIFY(!isOpen());
    QCOMPARE(received().size(), answerOf(QByteArray(LargeBody, 'x')).size());
}

void TestHttpServer::clientThatDoesNotReadGetsOneAnswer()
{
    m_client->setReadBufferSize(1);
    const QByteArray large = "GET /large HTTP/1.1\r\n\r\n";
    m_client->write(large + large + large);
    QTRY_COMPARE(m_server->asked.size(), 1);
    letServerRead();
    QCOMPARE(m_server->asked.size(), 1);
    m_client->setReadBufferSize(0);
    QTRY_COMPARE(m_server->asked.size(), 3);
    QTRY_COMPARE(received().size(), 3 * answerOf(QByteArray(LargeBody, 'x')).size());
}

void TestHttpServer::headIsAnsweredWithoutABody()
{
    m_client->write("HEAD /now HTTP/1.1\r\n\r\n" + Get);
    const QByteArray head = answerOf("HEAD /now");
    QTRY_COMPARE(received(), head.left(head.indexOf("\r\n\r\n") + 4) + answerOf("GET /now"));
}

void TestHttpServer::onlyTheFirstAnswerCounts()
{
    send({ "GET /twice HTTP/1.1\r\n\r\n" + Get });
    QTRY_COMPARE(received(), answerOf("first") + answerOf("GET /now"));
}

void TestHttpServer::droppedConnectionGetsNoAnswer()
{
    send({ "GET /drop HTTP/1.1\r\n\r\n" + Get });
    QTRY_VERIFY(!isOpen());
    QCOMPARE(received(), QByteArray());
    QCOMPARE(m_server->asked.size(), 1);
}

void TestHttpServer::clientMayVanish_data()
{
    QTest::addColumn<QByteArray>("sent");
    QTest::newRow("before it asks") << QByteArray();
    QTest::newRow("within the head") << Get.left(10);
    QTest::newRow("within the body")
        << QByteArray("POST /now HTTP/1.1\r\nContent-Length: 9\r\n\r\nbo");
    QTest::newRow("with the answer unread") << Get;
    QTest::newRow("with a large answer unread") << QByteArray("GET /large HTTP/1.1\r\n\r\n");
    QTest::newRow("before a large answer ends the connection")
        << QByteArray("GET /large HTTP/1.0\r\n\r\n");
    QTest::newRow("before the answer") << GetLater;
    QTest::newRow("without an answer") << GetNever;
    QTest::newRow("without an answer, having sent more") << GetNever + Get;
    QTest::newRow("refused") << QByteArray("hello\r\n\r\n");
}

void TestHttpServer::clientMayVanish()
{
    QFETCH(QByteArray, sent);
    for (const bool isRead : { true, false }) { // whether the server has read it before
        QVERIFY(connectClient());
        m_client->setReadBufferSize(1); // the answer stays with the server
        m_client->write(sent);
        m_client->flush();
        if (isRead)
            letServerRead();
        m_client->abort();
        QVERIFY(serverAnswersAnother());
        QTRY_COMPARE(descriptors(), m_quiet);
    }
}

void TestHttpServer::serverMayGoWithOpenConnections_data()
{
    clientMayVanish_data();
}

void TestHttpServer::serverMayGoWithOpenConnections()
{
    QFETCH(QByteArray, sent);
    for (const bool isRead : { true, false }) { // whether the server has read it before
        init();
        m_client->setReadBufferSize(1); // the answer stays with the server
        m_client->write(sent);
        m_client->flush();
        if (isRead)
            letServerRead();
        m_server.reset();
        m_client->setReadBufferSize(0);
        QTRY_VERIFY(!isOpen());
        m_client.reset();
        QVERIFY(descriptors() <= m_quiet);
    }
}

void TestHttpServer::takenPortIsReported()
{
    QVERIFY(m_server->port() != 0);
    Server other;
    QVERIFY(!other.listen(m_server->port()));
    QVERIFY(!other.errorText().isEmpty());
    QVERIFY(other.listen(0));
    QVERIFY(other.port() != m_server->port());
}

void TestHttpServer::anyBytesAreSurvived()
{
    const quint32 seed = QRandomGenerator::system()->generate();
    qInfo("seed %u", seed);
    QRandomGenerator random(seed);
    const QList<QByteArray> parts { Get, GetLater, GetNever, "\r\n", "\r\n\r\n", ": ", "HTTP/1.1",
        "Content-Length: ", "3", "-", "GET ", QByteArray(1, '\0'), "\xff", QByteArray(9000, 'y') };
    for (int round = 0; round < 200; ++round) {
        QVERIFY(connectClient());
        QList<QByteArray> pieces;
        for (int i = random.bounded(12); i >= 0; --i)
            pieces.append(parts.at(random.bounded(parts.size())));
        send(pieces);
    }
    QVERIFY(serverAnswersAnother());
}

QTEST_GUILESS_MAIN(TestHttpServer)
#include "tst_httpserver.moc"
