// SPDX-License-Identifier: GPL-3.0-or-later
#include "apiclient.h"

#include <QDebug>
#include <QMetaEnum>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QThread>
#include <QUrl>

namespace {

// The status is all that counts; what is longer than this is no answer.
constexpr qint64 LongestAnswer = 64 * 1024;

} // namespace

ApiClient *ApiClient::instance()
{
    static ApiClient *const theInstance = new ApiClient;
    return theInstance;
}

ApiClient::ApiClient(QObject *parent)
    : QObject(parent)
    , m_network(new QNetworkAccessManager(this))
{
    qDebug().noquote().nospace() << "ApiClient::constructor in thread "
                                 << QThread::currentThreadId();
    connect(m_network, &QNetworkAccessManager::finished, this, &ApiClient::onFinish);
}

void ApiClient::installUpdate()
{
    qInfo() << "ApiClient::installUpdate()";
    QNetworkReply *const reply = m_network->post(
        QNetworkRequest(QUrl(QStringLiteral("http://127.0.0.1:8080/api/install_update_v1"))),
        QByteArray());
    connect(reply, &QNetworkReply::readyRead, this, [reply] {
        if (reply->bytesAvailable() > LongestAnswer)
            reply->abort();
    });
}

void ApiClient::onFinish(QNetworkReply *reply)
{
    qInfo().noquote().nospace() << "ApiClient::onFinish() received reply for: "
                                << reply->request().url().toString();
    if (reply->error() != QNetworkReply::NoError) {
        qCritical().noquote().nospace()
            << "ApiClient::onFinish() something went wrong: "
            << QMetaEnum::fromType<QNetworkReply::NetworkError>().valueToKey(reply->error());
    }
    reply->deleteLater();
}
