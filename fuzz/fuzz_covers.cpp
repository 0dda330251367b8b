// SPDX-License-Identifier: GPL-3.0-or-later
#include "fuzzing.h"
#include "imageprovider.h"
#include "roon.h"

#include <QTcpServer>
#include <QTcpSocket>
#include <QTimer>

/*
 * What the image service answers. With the first byte below 128 the rest is a picture in a right
 * answer, else it is the answer as it stands.
 */

namespace {

/** Answers every request with the same bytes and closes. */
class Service {
public:
    Service()
    {
        m_server.listen(QHostAddress::LocalHost);
        QObject::connect(&m_server, &QTcpServer::newConnection, [this] {
            QTcpSocket *const socket = m_server.nextPendingConnection();
            QObject::connect(socket, &QTcpSocket::readyRead, socket, [this, socket] {
                socket->readAll();
                socket->write(m_answer);
                socket->disconnectFromHost();
            });
            QObject::connect(socket, &QTcpSocket::disconnected, socket, &QTcpSocket::deleteLater);
        });
    }

    quint16 port() const { return m_server.serverPort(); }
    void setAnswer(const QByteArray &bytes) { m_answer = bytes; }

private:
    QTcpServer m_server;
    QByteArray m_answer;
};

constexpr int Patience = 50; // ms; far more than what right answers take

Service *service = nullptr;
ImageProvider *provider = nullptr;

} // namespace

extern "C" int LLVMFuzzerInitialize(int *, char ***)
{
    Fuzzing::start();
    service = new Service;
    provider = new ImageProvider(QQmlImageProviderBase::Image);
    Roon::instance()->setServerUrl(QStringLiteral("127.0.0.1:%1").arg(service->port()));
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    if (size == 0)
        return 0;
    const QByteArray rest(reinterpret_cast<const char *>(data + 1), int(size - 1));
    service->setAnswer(data[0] < 128 ? "HTTP/1.1 200 OK\r\nContent-Length: "
                + QByteArray::number(rest.size()) + "\r\nConnection: close\r\n\r\n" + rest
                                     : rest);
    static int number = 0; // of the cover: the same one would come from the cache
    QSize told;
    QTimer limit;
    QObject::connect(&limit, &QTimer::timeout, [] { provider->abandonFetches(); });
    limit.start(Patience);
    const QImage image = provider->requestImage(QString::number(++number), &told, QSize());
    Fuzzing::require(image.width() <= 8192 && image.height() <= 8192, "pictures have limits");
    Fuzzing::require(
        told.isEmpty() || told == image.size(), "the size that is told is the picture's");
    return 0;
}
