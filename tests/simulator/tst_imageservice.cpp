// SPDX-License-Identifier: GPL-3.0-or-later
#include "simulator/services/imageservice.h"

#include "simulator/house/library.h"
#include "simulator/services/coverart.h"
#include "testkit/meandifference.h"

#include <QImage>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QSet>
#include <QTest>

#include <memory>

class TestImageService : public QObject {
    Q_OBJECT

private slots:
    void init();

    void everyAlbumHasItsOwnCover();
    void sameKeySamePicture();
    void sizeIsAsAskedFor_data();
    void sizeIsAsAskedFor();
    void oddRequests_data();
    void oddRequests();
    void slowAnswersAfterTheDelay();
    void failsWithStatus500();
    void dropsTheConnection();
    void garbageIsNoPicture();
    void hangsUntilTheClientLeaves();
    void hangingRequestsAreAnsweredAfterwards();
    void modesHaveNames();

private:
    using Reply = std::unique_ptr<QNetworkReply>;
    Reply get(const QString &target);
    static bool finished(const Reply &reply);
    static int status(const Reply &reply);

    QNetworkAccessManager m_network;
    std::unique_ptr<ImageService> m_service;
};

void TestImageService::init()
{
    m_service = std::make_unique<ImageService>();
    QVERIFY(m_service->listen(0));
    m_network.clearConnectionCache();
}

TestImageService::Reply TestImageService::get(const QString &target)
{
    const QUrl url(QStringLiteral("http://") + m_service->address() + target);
    return Reply(m_network.get(QNetworkRequest(url)));
}

bool TestImageService::finished(const Reply &reply)
{
    return QTest::qWaitFor([&reply] { return reply->isFinished(); }, 20000);
}

int TestImageService::status(const Reply &reply)
{
    return reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
}

void TestImageService::everyAlbumHasItsOwnCover()
{
    QVector<QImage> pictures;
    for (const Album &album : Library::albums()) {
        const QImage picture = CoverArt::draw(album.imageKey(), QSize(100, 100));
        for (const QImage &other : qAsConst(pictures))
            QVERIFY2(meanDifference(picture, other) > 15, qPrintable(album.name));
        pictures.append(picture);
        QSet<QRgb> colours;
        for (int y = 0; y < picture.height(); ++y) {
            for (int x = 0; x < picture.width(); ++x)
                colours.insert(picture.pixel(x, y));
        }
        QVERIFY2(colours.size() > 10, qPrintable(album.name));
    }
}

void TestImageService::sameKeySamePicture()
{
    QCOMPARE(CoverArt::draw("key", QSize(64, 64)), CoverArt::draw("key", QSize(64, 64)));
    QVERIFY(!CoverArt::draw(QByteArray(), QSize(64, 64)).isNull());
}

void TestImageService::sizeIsAsAskedFor_data()
{
    QTest::addColumn<QString>("query");
    QTest::addColumn<QSize>("size");
    const auto row = [](const char *query, int width, int height) {
        QTest::newRow(query) << QString::fromLatin1(query) << QSize(width, height);
    };
    row("?scale=fit&width=402&height=402&format=image/jpeg", 402, 402);
    row("?scale=fit&width=800&height=480&format=image/jpeg", 480, 480);
    row("?scale=fit&width=100&height=480", 100, 100);
    row("?scale=fill&width=800&height=480", 800, 480);
    row("?scale=stretch&width=80&height=300", 80, 300);
    row("?width=50&height=50", 50, 50);
    row("?scale=fit&width=1&height=1", 1, 1);
    row("", 600, 600);
}

void TestImageService::sizeIsAsAskedFor()
{
    QFETCH(QString, query);
    QFETCH(QSize, size);
    const Reply reply = get(QStringLiteral("/image/abc") + query);
    QVERIFY(finished(reply));
    QCOMPARE(status(reply), 200);
    QCOMPARE(
        reply->header(QNetworkRequest::ContentTypeHeader).toString(), QStringLiteral("image/jpeg"));
    QImage picture;
    QVERIFY(picture.loadFromData(reply->readAll(), "JPEG"));
    QCOMPARE(picture.size(), size);
}

void TestImageService::oddRequests_data()
{
    QTest::addColumn<QString>("target");
    QTest::addColumn<int>("expected");
    const auto row = [](const char *target, int expected) {
        QTest::newRow(target) << QString::fromLatin1(target) << expected;
    };
    row("/", 404);
    row("/image/", 404);
    row("/images/abc", 404);
    row("/image/abc?width=0&height=5", 400);
    row("/image/abc?width=-3&height=5", 400);
    row("/image/abc?width=5000&height=5", 400);
    row("/image/abc?width=wide&height=5", 400);
    row("/image/abc?scale=twist&width=5&height=5", 400);
    row("/image/a%20%22b%22/%C3%BC?width=5&height=5", 200);
}

void TestImageService::oddRequests()
{
    QFETCH(QString, target);
    QFETCH(int, expected);
    const Reply reply = get(target);
    QVERIFY(finished(reply));
    QCOMPARE(status(reply), expected);
}

void TestImageService::slowAnswersAfterTheDelay()
{
    m_service->setMode(ImageService::Mode::Slow, 200);
    const Reply reply = get(QStringLiteral("/image/abc"));
    QTest::qWait(50); // nothing may come meanwhile, so there is nothing to wait for
    QVERIFY(!reply->isFinished());
    QVERIFY(finished(reply));
    QVERIFY(!QImage::fromData(reply->readAll()).isNull());
}

void TestImageService::failsWithStatus500()
{
    m_service->setMode(ImageService::Mode::Fail);
    const Reply reply = get(QStringLiteral("/image/abc"));
    QVERIFY(finished(reply));
    QCOMPARE(status(reply), 500);
    m_service->setMode(ImageService::Mode::Normal);
    const Reply again = get(QStringLiteral("/image/abc"));
    QVERIFY(finished(again));
    QCOMPARE(status(again), 200);
}

void TestImageService::dropsTheConnection()
{
    m_service->setMode(ImageService::Mode::Drop);
    const Reply reply = get(QStringLiteral("/image/abc"));
    QVERIFY(finished(reply));
    QVERIFY(reply->error() != QNetworkReply::NoError);
}

void TestImageService::garbageIsNoPicture()
{
    m_service->setMode(ImageService::Mode::Garbage);
    const Reply reply = get(QStringLiteral("/image/abc"));
    QVERIFY(finished(reply));
    QCOMPARE(status(reply), 200);
    QVERIFY(QImage::fromData(reply->readAll()).isNull());
}

void TestImageService::hangsUntilTheClientLeaves()
{
    m_service->setMode(ImageService::Mode::Hang);
    const Reply reply = get(QStringLiteral("/image/abc"));
    QTest::qWait(100); // nothing may come, so there is nothing to wait for
    QVERIFY(!reply->isFinished());
    reply->abort();
    m_service->setMode(ImageService::Mode::Normal);
    const Reply again = get(QStringLiteral("/image/abc"));
    QVERIFY(finished(again));
    QCOMPARE(status(again), 200);
}

void TestImageService::hangingRequestsAreAnsweredAfterwards()
{
    m_service->setMode(ImageService::Mode::Hang);
    const Reply first = get(QStringLiteral("/image/abc?width=7"));
    const Reply second = get(QStringLiteral("/image/def?width=8"));
    Reply gone = get(QStringLiteral("/image/ghi?width=9"));
    QTest::qWait(100); // nothing may come, so there is nothing to wait for
    QVERIFY(!first->isFinished());
    gone.reset();
    m_service->setMode(ImageService::Mode::Normal);
    QVERIFY(finished(first));
    QCOMPARE(QImage::fromData(first->readAll()).width(), 7);
    QVERIFY(finished(second));
    QCOMPARE(QImage::fromData(second->readAll()).width(), 8);

    m_service->setMode(ImageService::Mode::Hang);
    const Reply failing = get(QStringLiteral("/image/jkl"));
    QTest::qWait(100);
    m_service->setMode(ImageService::Mode::Fail);
    QVERIFY(finished(failing));
    QCOMPARE(status(failing), 500);
}

void TestImageService::modesHaveNames()
{
    QCOMPARE(
        int(ImageService::modeOf(QStringLiteral("garbage"))), int(ImageService::Mode::Garbage));
    QVERIFY(ImageService::modeNames().contains(QStringLiteral("garbage")));
    QCOMPARE(int(ImageService::modeOf(QStringLiteral("Garbage"))), int(ImageService::Mode::Normal));
}

QTEST_GUILESS_MAIN(TestImageService)
#include "tst_imageservice.moc"
