// SPDX-License-Identifier: GPL-3.0-or-later
#include "fuzzing.h"
#include "piecemutator.h"
#include "simulator/http/httpserver.h"

#include <QCoreApplication>
#include <QTcpSocket>
#include <QTimer>

/*
 * Requests to the simulator's HTTP server. The first byte says how many bytes come at a time, 0 for
 * all.
 */

namespace {

/** Answers at once, later, never, or closes, as the first letter of the target says. */
class Server : public HttpServer {
public:
    int answered = 0;

protected:
    void answer(const Request &request, QTcpSocket *socket) override
    {
        ++answered;
        Fuzzing::require(
            request.line.size() + request.body.size() <= 64 * 1024, "requests have limits");
        Fuzzing::require(
            !request.method.isEmpty() && !request.target.isEmpty(), "requests ask something");
        const auto respondNow = [this, socket] { respond(socket, 200, "text/plain", "yes"); };
        switch (request.target.size() > 1 ? request.target.at(1) : 'n') {
        case 'l':
            QTimer::singleShot(0, socket, respondNow);
            break;
        case 'c':
            socket->disconnectFromHost();
            break;
        case 'v':
            break;
        default:
            respondNow();
        }
    }
};

QByteArray line(PieceMutator::Random &random)
{
    static const QVector<QByteArray> lines { "GET / HTTP/1.1", "GET /image/key?scale=fit HTTP/1.1",
        "POST /later HTTP/1.1", "HEAD /n HTTP/1.1", "GET /close HTTP/1.0", "GET /void HTTP/1.1", "",
        "Content-Length: 0", "Content-Length: 3", "Content-Length: -1",
        "Content-Length: 99999999999", "Content-Length: 3, 3", "Connection: close",
        "Connection: keep-alive", "Connection: Close, x", "Transfer-Encoding: chunked",
        "Expect: 100-continue", "X", ": y", " folded", "abc", QByteArray(4000, 'h') };
    return PieceMutator::oneOf(lines, random) + (random() % 16 ? "\r\n" : "\n");
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int *, char ***)
{
    Fuzzing::start();
    return 0;
}

extern "C" std::size_t LLVMFuzzerCustomMutator(
    std::uint8_t *data, std::size_t size, std::size_t maxSize, unsigned int seed)
{
    static const PieceMutator mutator(PieceMutator::lines, line);
    if (size == 0 || maxSize < 2) {
        data[0] = 0;
        return 1;
    }
    return 1 + mutator.mutate(data + 1, size - 1, maxSize - 1, seed);
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    if (size == 0)
        return 0;
    const QByteArray stream = Fuzzing::bytes(data + 1, size - 1);
    const int step = data[0] ? data[0] : qMax(1, stream.size());
    Server server;
    server.listen(0);
    QTcpSocket client;
    client.connectToHost(QHostAddress(QHostAddress::LocalHost), server.port());
    Fuzzing::waitUntil(
        [&] { return client.state() == QTcpSocket::ConnectedState; }, "the server accepts");
    QByteArray answers;
    for (int sent = 0; sent < stream.size() && client.state() == QTcpSocket::ConnectedState;
         sent += step) {
        client.write(stream.mid(sent, step));
        client.flush();
        QCoreApplication::processEvents();
        answers += client.readAll();
    }
    if (client.state() == QTcpSocket::ConnectedState)
        client.disconnectFromHost();
    Fuzzing::waitUntil(
        [&] { return client.state() == QTcpSocket::UnconnectedState; }, "a client can leave");
    answers += client.readAll();
    Fuzzing::require(answers.isEmpty() || answers.startsWith("HTTP/1.1 "), "answers are HTTP");
    Fuzzing::require(
        answers.count("HTTP/1.1 200") <= server.answered, "each request has one answer");
    return 0;
}
