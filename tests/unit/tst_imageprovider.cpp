// SPDX-License-Identifier: GPL-3.0-or-later
#include "imageprovider.h"
#include "coverbehaviour.h"
#include "logcapture.h"
#include "roon.h"

#include <QBuffer>
#include <QEventLoop>
#include <QFile>
#include <QImageReader>
#include <QNetworkReply>
#include <QTcpServer>
#include <QTest>
#include <QTimer>

#include <algorithm>
#include <atomic>
#include <functional>
#include <memory>
#include <thread>
#include <vector>

namespace {

const QSize Untouched(-7, -7);

QString addressOf(const ImageServer &server, const QString &key)
{
    return QStringLiteral("http://") + QString::fromLatin1(server.address())
        + QStringLiteral("/image/") + key
        + QStringLiteral("?scale=fit&width=402&height=402&format=image/jpeg");
}

QString calledLine(const ImageServer &server, const QString &key)
{
    return QStringLiteral("debug: ImageProvider::requestImage() called with url: ")
        + addressOf(server, key);
}

const QString FetchedLine
    = QStringLiteral("info: ImageProvider::requestImage() return fetched mage");
const QString CachedLine
    = QStringLiteral("debug: ImageProvider::requestImage() return CACHED image!");
const QString RetryLine
    = QStringLiteral("critical: ImageProvider::requestImage() ERROR occured, retrying...");
const QString ErrorLine = QStringLiteral("critical: ImageProvider::requestImage() network ERROR: ");

QColor colourOf(const QImage &image)
{
    return image.isNull() ? QColor() : image.pixelColor(image.width() / 2, image.height() / 2);
}

/** The beginning of a grey PNG of 30,000 pixels a side; where its rows belong is nothing. */
QByteArray hugePng()
{
    return QByteArray::fromHex("89504e470d0a1a0a0000000d49484452000075300000753008000000"
                               "00434ca766000000004944415435af061e");
}

/** A grey JPEG whose header claims 30,000 pixels a side. */
QByteArray hugeJpeg()
{
    QImage image(8, 8, QImage::Format_Grayscale8);
    image.fill(Qt::gray);
    QBuffer buffer;
    image.save(&buffer, "JPEG");
    QByteArray file = buffer.data();
    // The frame's header: marker, length, precision, height, width.
    const int frame = file.indexOf("\xff\xc0");
    file.replace(frame + 5, 4, QByteArray::fromHex("75307530"));
    return file;
}

/** The most address space that this process has had so far; 0 where that cannot be known. */
qint64 peakBytes()
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly))
        return 0;
    const QList<QByteArray> lines = status.readAll().split('\n');
    for (const QByteArray &line : lines) {
        if (line.startsWith("VmPeak:"))
            return line.mid(7).trimmed().split(' ').first().toLongLong() * 1024;
    }
    return 0;
}

/** Requests pictures in a thread of its own: a standard one, whose end a thread sanitizer sees. */
class Asker {
public:
    Asker(ImageProvider &provider, const QStringList &keys)
        : m_thread([this, &provider, keys] {
            for (const QString &key : keys)
                colours.append(colourOf(provider.requestImage(key, nullptr, QSize())));
            m_finished = true;
        })
    {
    }
    ~Asker() { m_thread.join(); }

    /** What was seen, once it has finished. */
    QList<QColor> colours;
    bool isFinished() const { return m_finished; }

private:
    std::atomic<bool> m_finished { false };
    std::thread m_thread; // last, because it uses the others
};

/** Sees each reply to a network request of this thread before its first event is delivered. */
class ReplyWatch : public QObject {
public:
    explicit ReplyWatch(std::function<void(QNetworkReply *)> seen)
        : m_seen(std::move(seen))
    {
        QCoreApplication::instance()->installEventFilter(this);
    }

    bool eventFilter(QObject *receiver, QEvent *) override
    {
        auto *const reply = qobject_cast<QNetworkReply *>(receiver);
        if (reply && !m_known.contains(reply)) {
            m_known.append(reply);
            m_seen(reply);
        }
        return false;
    }

private:
    const std::function<void(QNetworkReply *)> m_seen;
    QList<QNetworkReply *> m_known;
};

} // namespace

class TestImageProvider : public QObject {
    Q_OBJECT

private slots:
    void init();

    void isAnImageProviderWithoutFlags();
    void constructorLogsThreadAndLogo();
    void missingLogoIsOnlyLogged();
    void reservedIdsGiveTheLogo_data();
    void reservedIdsGiveTheLogo();
    void onlyTheReservedIdsAreReserved_data();
    void onlyTheReservedIdsAreReserved();
    void asksForTheFixedSizeWhateverIsRequested();
    void fetchIsLogged();
    void formatIsFoundInTheData_data();
    void formatIsFoundInTheData();
    void sizeIsReportedForFetchedPicturesOnly();
    void sizeMayBeLeftOut();
    void sameKeyTwiceIsOneRequest();
    void onlyTheLastPictureIsKept();
    void anotherServerIsAnotherPicture();
    void oneFailureIsRetried();
    void twoFailuresGiveTheLogoAndKeepTheCache_data();
    void twoFailuresGiveTheLogoAndKeepTheCache();
    void droppedConnectionGivesTheLogo();
    void refusedConnectionGivesTheLogo();
    void bodyThatIsNoPictureIsKeptLikeAnyOther();
    void pictureBeyondTheLimitIsNoPicture_data();
    void pictureBeyondTheLimitIsNoPicture();
    void pictureThatClaimsToBeHugeIsNotDecoded_data();
    void pictureThatClaimsToBeHugeIsNotDecoded();
    void bodyWithoutAnEndIsNoPicture();
    void addressThatIsNoUrlGivesTheLogo_data();
    void addressThatIsNoUrlGivesTheLogo();
    void otherEventsGoOnDuringTheFetch();
    void nestedFetchGetsItsOwnPicture();
    void callsFromSeveralThreadsGetTheirOwnPictures();
    void quitEndsAHangingFetch();
    void abandonedFetchGivesTheLogoAndKeepsNothing();
    void fetchAbandonedAsItEndsIsNotTriedAgain_data();
    void fetchAbandonedAsItEndsIsNotTriedAgain();
    void prefetchSaysWhetherThePictureIsThere_data();
    void prefetchSaysWhetherThePictureIsThere();

private:
    std::unique_ptr<ImageServer> m_server;
    std::unique_ptr<ImageProvider> m_provider;
    QImage m_logo;
};

void TestImageProvider::init()
{
    m_server = std::make_unique<ImageServer>();
    m_provider = std::make_unique<ImageProvider>(QQmlImageProviderBase::Image);
    m_logo = QImage(QStringLiteral(":/images/Velunor_logo_v020-07.png"));
    QVERIFY(!m_logo.isNull());
    moveCoreTo(*m_server);
}

void TestImageProvider::isAnImageProviderWithoutFlags()
{
    QCOMPARE(m_provider->imageType(), QQmlImageProviderBase::Image);
    QCOMPARE(m_provider->flags(), QQmlImageProviderBase::Flags());
    const ImageProvider other(QQmlImageProviderBase::Pixmap);
    QCOMPARE(other.imageType(), QQmlImageProviderBase::Pixmap);
}

void TestImageProvider::constructorLogsThreadAndLogo()
{
    LogCapture log;
    const ImageProvider provider(QQmlImageProviderBase::Image);
    QCOMPARE(log.take(),
        QStringList({ constructorLine(QStringLiteral("ImageProvider")),
            QStringLiteral("debug: ImageProvider::constructor logoImage.isNull(): false") }));
}

void TestImageProvider::missingLogoIsOnlyLogged()
{
    Q_CLEANUP_RESOURCE(resources);
    LogCapture log;
    ImageProvider provider(QQmlImageProviderBase::Image);
    Q_INIT_RESOURCE(resources);
    QCOMPARE(log.take(),
        QStringList({ constructorLine(QStringLiteral("ImageProvider")),
            QStringLiteral("debug: ImageProvider::constructor logoImage.isNull(): true") }));
    QVERIFY(provider.requestImage(QStringLiteral("NO_IMAGE"), nullptr, QSize()).isNull());
}

void TestImageProvider::reservedIdsGiveTheLogo_data()
{
    QTest::addColumn<QString>("id");
    QTest::addColumn<QString>("line");
    QTest::newRow("null")
        << QString() << "warning: ImageProvider::requestImage() called with empty id, return logo";
    QTest::newRow("empty")
        << ""
        << "warning: ImageProvider::requestImage() called with empty id, return logo";
    QTest::newRow("logo") << "__VELUNOR_LOGO__"
                          << "info: ImageProvider::requestImage() return logo";
    QTest::newRow("no picture")
        << "NO_IMAGE"
        << "info: ImageProvider::requestImage() called with 'NO_IMAGE', return logo";
}

void TestImageProvider::reservedIdsGiveTheLogo()
{
    QFETCH(QString, id);
    QFETCH(QString, line);
    LogCapture log;
    QSize size = Untouched;
    QCOMPARE(m_provider->requestImage(id, &size, QSize(10, 10)), m_logo);
    QCOMPARE(log.take(), QStringList(line));
    QCOMPARE(size, Untouched);
    QVERIFY(!ImageProvider::isFetched(id));
    QCOMPARE(m_server->requests().size(), 0);
}

void TestImageProvider::onlyTheReservedIdsAreReserved_data()
{
    QTest::addColumn<QString>("id");
    QTest::newRow("lower case") << "no_image";
    QTest::newRow("lower case logo") << "__velunor_logo__";
    QTest::newRow("longer") << "NO_IMAGE2";
    QTest::newRow("shorter") << "NO_IMAG";
}

void TestImageProvider::onlyTheReservedIdsAreReserved()
{
    QFETCH(QString, id);
    m_server->setBehaviour(id, png(Qt::red));
    QVERIFY(ImageProvider::isFetched(id));
    QCOMPARE(colourOf(m_provider->requestImage(id, nullptr, QSize())), QColor(Qt::red));
    QCOMPARE(m_server->requestsFor(id), 1);
}

void TestImageProvider::asksForTheFixedSizeWhateverIsRequested()
{
    m_server->setBehaviour(QStringLiteral("key"), png(Qt::red));
    QSize size;
    const QImage image = m_provider->requestImage(QStringLiteral("key"), &size, QSize(10, 20));
    QCOMPARE(image.size(), QSize(402, 402));
    QCOMPARE(m_server->requests().size(), 1);
    QCOMPARE(m_server->requests().first().line,
        QByteArray("GET /image/key?scale=fit&width=402&height=402&format=image/jpeg HTTP/1.1"));
}

void TestImageProvider::fetchIsLogged()
{
    m_server->setBehaviour(QStringLiteral("key"), png(Qt::red));
    LogCapture log;
    m_provider->requestImage(QStringLiteral("key"), nullptr, QSize());
    QCOMPARE(
        log.take(), QStringList({ calledLine(*m_server, QStringLiteral("key")), FetchedLine }));
}

void TestImageProvider::formatIsFoundInTheData_data()
{
    QTest::addColumn<QByteArray>("format");
    QTest::newRow("JPEG") << QByteArray("JPEG");
    QTest::newRow("PNG") << QByteArray("PNG");
    QTest::newRow("BMP") << QByteArray("BMP");
}

void TestImageProvider::formatIsFoundInTheData()
{
    QFETCH(QByteArray, format);
    ImageServer::Behaviour behaviour = png(Qt::white);
    behaviour.format = format.constData();
    m_server->setBehaviour(QStringLiteral("key"), behaviour);
    const QImage image = m_provider->requestImage(QStringLiteral("key"), nullptr, QSize());
    QCOMPARE(image.size(), QSize(402, 402));
    QCOMPARE(colourOf(image), QColor(Qt::white));
}

void TestImageProvider::sizeIsReportedForFetchedPicturesOnly()
{
    m_server->setBehaviour(QStringLiteral("key"), png(Qt::red));
    QSize size = Untouched;
    m_provider->requestImage(QStringLiteral("key"), &size, QSize());
    QCOMPARE(size, QSize(402, 402));
    size = Untouched;
    m_provider->requestImage(QStringLiteral("key"), &size, QSize());
    QCOMPARE(size, Untouched);
    m_provider->requestImage(QStringLiteral("absent"), &size, QSize());
    QCOMPARE(size, Untouched);
}

void TestImageProvider::sizeMayBeLeftOut()
{
    m_server->setBehaviour(QStringLiteral("key"), png(Qt::red));
    QVERIFY(!m_provider->requestImage(QStringLiteral("key"), nullptr, QSize()).isNull());
    QVERIFY(!m_provider->requestImage(QStringLiteral("key"), nullptr, QSize()).isNull());
}

void TestImageProvider::sameKeyTwiceIsOneRequest()
{
    m_server->setBehaviour(QStringLiteral("key"), png(Qt::red));
    const QImage first = m_provider->requestImage(QStringLiteral("key"), nullptr, QSize());
    LogCapture log;
    const QImage second = m_provider->requestImage(QStringLiteral("key"), nullptr, QSize());
    QCOMPARE(log.take(), QStringList({ calledLine(*m_server, QStringLiteral("key")), CachedLine }));
    QCOMPARE(second, first);
    QCOMPARE(m_server->requests().size(), 1);

    // What the caller does to its copy is not seen in the next one.
    QImage drawnOver = second;
    drawnOver.fill(Qt::green);
    QCOMPARE(m_provider->requestImage(QStringLiteral("key"), nullptr, QSize()), first);
}

void TestImageProvider::onlyTheLastPictureIsKept()
{
    m_server->setBehaviour(QStringLiteral("A"), png(Qt::red));
    m_server->setBehaviour(QStringLiteral("B"), png(Qt::blue));
    QCOMPARE(
        colourOf(m_provider->requestImage(QStringLiteral("A"), nullptr, QSize())), QColor(Qt::red));
    QCOMPARE(colourOf(m_provider->requestImage(QStringLiteral("B"), nullptr, QSize())),
        QColor(Qt::blue));
    QCOMPARE(
        colourOf(m_provider->requestImage(QStringLiteral("A"), nullptr, QSize())), QColor(Qt::red));
    QCOMPARE(m_server->requestsFor(QStringLiteral("A")), 2);
    QCOMPARE(m_server->requestsFor(QStringLiteral("B")), 1);

    // The logo in between is no picture of the core's.
    m_provider->requestImage(QStringLiteral("NO_IMAGE"), nullptr, QSize());
    m_provider->requestImage(QStringLiteral("A"), nullptr, QSize());
    QCOMPARE(m_server->requestsFor(QStringLiteral("A")), 2);
}

void TestImageProvider::anotherServerIsAnotherPicture()
{
    ImageServer other;
    m_server->setBehaviour(QStringLiteral("key"), png(Qt::red));
    other.setBehaviour(QStringLiteral("key"), png(Qt::blue));
    QCOMPARE(colourOf(m_provider->requestImage(QStringLiteral("key"), nullptr, QSize())),
        QColor(Qt::red));
    moveCoreTo(other);
    QCOMPARE(colourOf(m_provider->requestImage(QStringLiteral("key"), nullptr, QSize())),
        QColor(Qt::blue));
    QCOMPARE(other.requestsFor(QStringLiteral("key")), 1);
}

void TestImageProvider::oneFailureIsRetried()
{
    ImageServer::Behaviour behaviour = png(Qt::red);
    behaviour.failures = 1;
    m_server->setBehaviour(QStringLiteral("key"), behaviour);
    LogCapture log;
    QSize size = Untouched;
    QCOMPARE(
        colourOf(m_provider->requestImage(QStringLiteral("key"), &size, QSize())), QColor(Qt::red));
    QCOMPARE(size, QSize(402, 402));
    QCOMPARE(log.take(),
        QStringList({ calledLine(*m_server, QStringLiteral("key")), RetryLine, FetchedLine }));
    QCOMPARE(m_server->requests().size(), 2);
    QCOMPARE(m_server->requests().at(0).line, m_server->requests().at(1).line);

    m_provider->requestImage(QStringLiteral("key"), nullptr, QSize());
    QCOMPARE(m_server->requests().size(), 2);
}

void TestImageProvider::twoFailuresGiveTheLogoAndKeepTheCache_data()
{
    QTest::addColumn<bool>("isKnown");
    QTest::addColumn<int>("failures");
    QTest::newRow("status 500") << true << 1000;
    QTest::newRow("status 500 twice, then well") << true << 2;
    QTest::newRow("status 404") << false << 0;
}

void TestImageProvider::twoFailuresGiveTheLogoAndKeepTheCache()
{
    QFETCH(bool, isKnown);
    QFETCH(int, failures);
    m_server->setBehaviour(QStringLiteral("good"), png(Qt::red));
    m_provider->requestImage(QStringLiteral("good"), nullptr, QSize());
    if (isKnown) {
        ImageServer::Behaviour behaviour = png(Qt::blue);
        behaviour.failures = failures;
        m_server->setBehaviour(QStringLiteral("bad"), behaviour);
    }
    LogCapture log;
    QSize size = Untouched;
    QCOMPARE(m_provider->requestImage(QStringLiteral("bad"), &size, QSize()), m_logo);
    QCOMPARE(size, Untouched);
    const QStringList lines = log.take();
    QCOMPARE(lines.size(), 3);
    QCOMPARE(lines.at(0), calledLine(*m_server, QStringLiteral("bad")));
    QCOMPARE(lines.at(1), RetryLine);
    QVERIFY2(lines.at(2).startsWith(ErrorLine) && lines.at(2).size() > ErrorLine.size(),
        qPrintable(lines.at(2)));
    QCOMPARE(m_server->requestsFor(QStringLiteral("bad")), 2);

    QCOMPARE(colourOf(m_provider->requestImage(QStringLiteral("good"), nullptr, QSize())),
        QColor(Qt::red));
    QCOMPARE(m_server->requestsFor(QStringLiteral("good")), 1);

    // A failure is not remembered either: the next request asks again.
    m_provider->requestImage(QStringLiteral("bad"), nullptr, QSize());
    QVERIFY(m_server->requestsFor(QStringLiteral("bad")) > 2);
    log.clear();
}

void TestImageProvider::droppedConnectionGivesTheLogo()
{
    m_server->setBehaviour(
        QStringLiteral("key"), ImageServer::Behaviour::of(ImageServer::Behaviour::Drop));
    LogCapture log;
    QCOMPARE(m_provider->requestImage(QStringLiteral("key"), nullptr, QSize()), m_logo);
    const QStringList lines = log.take();
    QCOMPARE(lines.size(), 3);
    QCOMPARE(lines.at(1), RetryLine);
    QVERIFY(lines.at(2).startsWith(ErrorLine));
}

void TestImageProvider::refusedConnectionGivesTheLogo()
{
    QTcpServer closed;
    QVERIFY(closed.listen(QHostAddress::LocalHost));
    const quint16 port = closed.serverPort();
    closed.close();
    Roon::instance()->setServerUrl(QStringLiteral("127.0.0.1:%1").arg(port));
    LogCapture log;
    QCOMPARE(m_provider->requestImage(QStringLiteral("key"), nullptr, QSize()), m_logo);
    const QString called
        = QStringLiteral("debug: ImageProvider::requestImage() called with url: http://127.0.0.1:%1"
                         "/image/key?scale=fit&width=402&height=402&format=image/jpeg")
              .arg(port);
    QCOMPARE(log.take(), QStringList({ called, RetryLine, ErrorLine + "Connection refused" }));
}

void TestImageProvider::bodyThatIsNoPictureIsKeptLikeAnyOther()
{
    m_server->setBehaviour(
        QStringLiteral("key"), ImageServer::Behaviour::of(ImageServer::Behaviour::Garbage));
    QSize size = Untouched;
    LogCapture log;
    QVERIFY(m_provider->requestImage(QStringLiteral("key"), &size, QSize()).isNull());
    QCOMPARE(size, QSize(0, 0));
    QVERIFY(m_provider->requestImage(QStringLiteral("key"), nullptr, QSize()).isNull());
    QCOMPARE(m_server->requests().size(), 1);
    const QString called = calledLine(*m_server, QStringLiteral("key"));
    QCOMPARE(log.take(), QStringList({ called, FetchedLine, called, CachedLine }));
}

void TestImageProvider::pictureBeyondTheLimitIsNoPicture_data()
{
    QTest::addColumn<QSize>("served");
    QTest::addColumn<QByteArray>("format");
    QTest::addColumn<QSize>("given");
    for (const char *const format : { "PNG", "JPEG" }) {
        QTest::addRow("%s, as wide as may be", format)
            << QSize(8192, 1) << QByteArray(format) << QSize(8192, 1);
        QTest::addRow("%s, as high as may be", format)
            << QSize(1, 8192) << QByteArray(format) << QSize(1, 8192);
        QTest::addRow("%s, too wide", format)
            << QSize(8193, 1) << QByteArray(format) << QSize(0, 0);
        QTest::addRow("%s, too high", format)
            << QSize(1, 8193) << QByteArray(format) << QSize(0, 0);
    }
    // Three bytes a pixel: the last line is what passes 32 MB.
    QTest::newRow("BMP, in 32 MB") << QSize(4096, 2730) << QByteArray("BMP") << QSize(4096, 2730);
    QTest::newRow("BMP, in more") << QSize(4096, 2731) << QByteArray("BMP") << QSize(0, 0);
}

void TestImageProvider::pictureBeyondTheLimitIsNoPicture()
{
    QFETCH(QSize, served);
    QFETCH(QByteArray, format);
    QFETCH(QSize, given);
    ImageServer::Behaviour behaviour;
    behaviour.size = served;
    behaviour.format = format.constData();
    m_server->setBehaviour(QStringLiteral("key"), behaviour);
    QSize size = Untouched;
    LogCapture log;
    QCOMPARE(m_provider->requestImage(QStringLiteral("key"), &size, QSize()).size(), given);
    QCOMPARE(size, given);
    QCOMPARE(m_provider->requestImage(QStringLiteral("key"), nullptr, QSize()).size(), given);
    QCOMPARE(m_server->requests().size(), 1);
    const QString called = calledLine(*m_server, QStringLiteral("key"));
    QCOMPARE(log.take(), QStringList({ called, FetchedLine, called, CachedLine }));
}

void TestImageProvider::pictureThatClaimsToBeHugeIsNotDecoded_data()
{
    QTest::addColumn<QByteArray>("file");
    QTest::newRow("PNG") << hugePng();
    QTest::newRow("JPEG") << hugeJpeg();
}

void TestImageProvider::pictureThatClaimsToBeHugeIsNotDecoded()
{
    QFETCH(QByteArray, file);
    // Else it would be refused for another reason.
    QBuffer buffer(&file);
    QCOMPARE(QImageReader(&buffer).size(), QSize(30000, 30000));
    ImageServer::Behaviour behaviour;
    behaviour.file = file;
    m_server->setBehaviour(QStringLiteral("key"), behaviour);
    QSize size = Untouched;
    LogCapture log;
    const qint64 before = peakBytes();
    QVERIFY(before > 0);
    QVERIFY(m_provider->requestImage(QStringLiteral("key"), &size, QSize()).isNull());
    QCOMPARE(size, QSize(0, 0));
    // A decoder asks for the room of 900,000,000 pixels, or complains of what is missing.
    QVERIFY2(peakBytes() - before < 500 * 1000 * 1000,
        qPrintable(QString::number(peakBytes() - before)));
    QCOMPARE(
        log.take(), QStringList({ calledLine(*m_server, QStringLiteral("key")), FetchedLine }));
}

void TestImageProvider::bodyWithoutAnEndIsNoPicture()
{
    m_server->setBehaviour(
        QStringLiteral("key"), ImageServer::Behaviour::of(ImageServer::Behaviour::Endless));
    QSize size = Untouched;
    LogCapture log;
    QVERIFY(m_provider->requestImage(QStringLiteral("key"), &size, QSize()).isNull());
    QCOMPARE(size, QSize(0, 0));
    QCOMPARE(
        log.take(), QStringList({ calledLine(*m_server, QStringLiteral("key")), FetchedLine }));
    QCOMPARE(m_server->requests().size(), 1);
}

void TestImageProvider::addressThatIsNoUrlGivesTheLogo_data()
{
    QTest::addColumn<QString>("serverUrl");
    QTest::newRow("none") << "";
    QTest::newRow("blank") << " ";
    QTest::newRow("blanks inside") << "a b c";
    QTest::newRow("colon only") << ":";
    QTest::newRow("port too large") << "127.0.0.1:99999999";
    QTest::newRow("port not a number") << "127.0.0.1:http";
    QTest::newRow("open bracket") << "[::1";
    QTest::newRow("percent signs") << "%%%";
    QTest::newRow("zero byte") << QString(1, QChar());
    QTest::newRow("markup") << "<img src=\"x\">";
}

void TestImageProvider::addressThatIsNoUrlGivesTheLogo()
{
    QFETCH(QString, serverUrl);
    Roon::instance()->setServerUrl(serverUrl);
    // Before and after a picture is kept: an address that is no URL is never the one that is kept.
    QCOMPARE(m_provider->requestImage(QStringLiteral("key"), nullptr, QSize()), m_logo);
    moveCoreTo(*m_server);
    m_server->setBehaviour(QStringLiteral("key"), png(Qt::red));
    QCOMPARE(colourOf(m_provider->requestImage(QStringLiteral("key"), nullptr, QSize())),
        QColor(Qt::red));
    Roon::instance()->setServerUrl(serverUrl);
    QCOMPARE(m_provider->requestImage(QStringLiteral("key"), nullptr, QSize()), m_logo);
}

void TestImageProvider::otherEventsGoOnDuringTheFetch()
{
    ImageServer::Behaviour behaviour = png(Qt::red);
    behaviour.delayMs = 100;
    m_server->setBehaviour(QStringLiteral("key"), behaviour);
    int ticks = 0;
    QTimer timer;
    connect(&timer, &QTimer::timeout, this, [&ticks] { ++ticks; });
    timer.start(1);
    QCOMPARE(colourOf(m_provider->requestImage(QStringLiteral("key"), nullptr, QSize())),
        QColor(Qt::red));
    QVERIFY(ticks > 1);
}

void TestImageProvider::nestedFetchGetsItsOwnPicture()
{
    ImageServer::Behaviour slow = png(Qt::red);
    slow.delayMs = 200;
    m_server->setBehaviour(QStringLiteral("slow"), slow);
    m_server->setBehaviour(QStringLiteral("quick"), png(Qt::blue));
    QColor quick;
    QTimer::singleShot(0, this, [&] {
        quick = colourOf(m_provider->requestImage(QStringLiteral("quick"), nullptr, QSize()));
    });
    QCOMPARE(colourOf(m_provider->requestImage(QStringLiteral("slow"), nullptr, QSize())),
        QColor(Qt::red));
    QCOMPARE(quick, QColor(Qt::blue));

    // The one that ended last is kept.
    m_provider->requestImage(QStringLiteral("slow"), nullptr, QSize());
    QCOMPARE(m_server->requestsFor(QStringLiteral("slow")), 1);
}

void TestImageProvider::callsFromSeveralThreadsGetTheirOwnPictures()
{
    const QMap<QString, QColor> pictures {
        { QStringLiteral("A"), Qt::red },
        { QStringLiteral("B"), Qt::green },
        { QStringLiteral("C"), Qt::blue },
        { QStringLiteral("D"), Qt::white },
    };
    for (auto picture = pictures.begin(); picture != pictures.end(); ++picture)
        m_server->setBehaviour(picture.key(), png(picture.value()));

    std::vector<std::unique_ptr<Asker>> askers;
    for (int thread = 0; thread < 4; ++thread) {
        QStringList keys = pictures.keys() + pictures.keys() + pictures.keys();
        std::rotate(keys.begin(), keys.begin() + thread, keys.end());
        askers.push_back(std::make_unique<Asker>(*m_provider, keys));
    }
    for (const auto &asker : askers)
        QTRY_VERIFY_WITH_TIMEOUT(asker->isFinished(), 60000);
    for (int thread = 0; thread < 4; ++thread) {
        QStringList keys = pictures.keys() + pictures.keys() + pictures.keys();
        std::rotate(keys.begin(), keys.begin() + thread, keys.end());
        QList<QColor> expected;
        for (const QString &key : keys)
            expected.append(pictures.value(key));
        QCOMPARE(askers.at(static_cast<size_t>(thread))->colours, expected);
    }
}

void TestImageProvider::quitEndsAHangingFetch()
{
    m_server->setBehaviour(
        QStringLiteral("key"), ImageServer::Behaviour::of(ImageServer::Behaviour::Hang));
    LogCapture log;
    QImage image;
    QSize size = Untouched;
    QTimer::singleShot(
        0, this, [&] { image = m_provider->requestImage(QStringLiteral("key"), &size, QSize()); });
    QTimer poll;
    connect(&poll, &QTimer::timeout, this, [this] {
        if (m_server->requestsFor(QStringLiteral("key")) == 1)
            QCoreApplication::quit();
    });
    poll.start(1);
    QCOMPARE(QCoreApplication::exec(), 0);
    poll.stop();
    QCOMPARE(image, m_logo);
    QCOMPARE(size, Untouched);
    // No error is reported, nothing was asked for again and nothing is kept.
    QCOMPARE(log.take(), QStringList(calledLine(*m_server, QStringLiteral("key"))));
    QCOMPARE(m_server->requestsFor(QStringLiteral("key")), 1);
    m_server->setBehaviour(QStringLiteral("key"), png(Qt::red));
    QCOMPARE(colourOf(m_provider->requestImage(QStringLiteral("key"), nullptr, QSize())),
        QColor(Qt::red));
}

void TestImageProvider::abandonedFetchGivesTheLogoAndKeepsNothing()
{
    m_server->setBehaviour(
        QStringLiteral("key"), ImageServer::Behaviour::of(ImageServer::Behaviour::Hang));
    m_provider->abandonFetches(); // nothing to do
    LogCapture log;
    QTimer poll;
    connect(&poll, &QTimer::timeout, this, [this] {
        if (m_server->requestsFor(QStringLiteral("key")) == 1)
            m_provider->abandonFetches();
    });
    poll.start(1);
    QCOMPARE(m_provider->requestImage(QStringLiteral("key"), nullptr, QSize()), m_logo);
    poll.stop();
    QCOMPARE(log.take(), QStringList(calledLine(*m_server, QStringLiteral("key"))));
    m_server->setBehaviour(QStringLiteral("key"), png(Qt::red));
    QCOMPARE(colourOf(m_provider->requestImage(QStringLiteral("key"), nullptr, QSize())),
        QColor(Qt::red));
}

void TestImageProvider::fetchAbandonedAsItEndsIsNotTriedAgain_data()
{
    QTest::addColumn<int>("what");
    QTest::addColumn<bool>("before");
    for (const bool before : { true, false }) {
        const char *const when = before ? "before" : "after";
        QTest::addRow("failure, just %s", when) << int(ImageServer::Behaviour::Trouble) << before;
        QTest::addRow("success, just %s", when) << int(ImageServer::Behaviour::Picture) << before;
    }
}

void TestImageProvider::fetchAbandonedAsItEndsIsNotTriedAgain()
{
    QFETCH(int, what);
    QFETCH(bool, before);
    m_server->setBehaviour(QStringLiteral("key"),
        ImageServer::Behaviour::of(static_cast<ImageServer::Behaviour::Kind>(what)));
    LogCapture log;
    int abandoned = 0;
    const ReplyWatch watch([&](QNetworkReply *reply) {
        const auto abandon = [&] {
            m_provider->abandonFetches();
            ++abandoned;
        };
        // The last that a reply tells before it has finished.
        if (before)
            connect(reply, &QNetworkReply::readChannelFinished, this, abandon);
        else
            connect(reply, &QNetworkReply::finished, this, abandon);
    });
    QCOMPARE(m_provider->requestImage(QStringLiteral("key"), nullptr, QSize()), m_logo);
    QCOMPARE(abandoned, 1);
    QCOMPARE(log.take(), QStringList(calledLine(*m_server, QStringLiteral("key"))));
    QCoreApplication::processEvents();
    QCOMPARE(m_server->requestsFor(QStringLiteral("key")), 1);
}

void TestImageProvider::prefetchSaysWhetherThePictureIsThere_data()
{
    QTest::addColumn<int>("failures");
    QTest::addColumn<bool>("expected");
    QTest::newRow("there") << 0 << true;
    QTest::newRow("there at the second attempt") << 1 << true;
    QTest::newRow("not there") << 2 << false;
}

void TestImageProvider::prefetchSaysWhetherThePictureIsThere()
{
    QFETCH(int, failures);
    QFETCH(bool, expected);
    ImageServer::Behaviour behaviour = png(Qt::red);
    behaviour.failures = failures;
    m_server->setBehaviour(QStringLiteral("key"), behaviour);
    QCOMPARE(m_provider->prefetch(QStringLiteral("key")), expected);
    QCOMPARE(m_provider->prefetch(QStringLiteral("key")), true);
}

QTEST_GUILESS_MAIN(TestImageProvider)
#include "tst_imageprovider.moc"
