// SPDX-License-Identifier: GPL-3.0-or-later
#include "testkit/appliance.h"
#include "testkit/coverview.h"
#include "testkit/waiting.h"

#include <QTest>

#include <csignal>
#include <memory>

namespace {

using Behaviour = ImageServer::Behaviour;

const LogPattern Retrying
    = Line::critical("ImageProvider::requestImage() ERROR occured, retrying...");
const LogPattern Failed = Line::critical("ImageProvider::requestImage() network ERROR: ").andMore();
const LogPattern Fetched = Line::info("ImageProvider::requestImage() return fetched mage");

Behaviour picture(const QColor &colour, int delayMs = 0)
{
    Behaviour behaviour;
    behaviour.colour = colour;
    behaviour.delayMs = delayMs;
    return behaviour;
}

} // namespace

/** The player's cover with an image service in good and bad health. */
class TestCoverArt : public QObject {
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void showsTheCoverOfTheTrack();
    void anyShapeIsSeenWhole_data();
    void anyShapeIsSeenWhole();
    void fetchesACoverOnce();
    void oneFailureIsRetried();
    void aFailingServiceLeavesTheLogo_data();
    void aFailingServiceLeavesTheLogo();
    void garbageIsLeftBehindWithItsTrack();
    void aLateCoverDoesNotReplaceTheWantedOne();
    void aHangingServiceDoesNotKeepTheNextCoverAway();
    void aLateAddressBringsTheCover_data();
    void aLateAddressBringsTheCover();
    void aCoreThatMovesIsAskedAtItsNewAddress_data();
    void aCoreThatMovesIsAskedAtItsNewAddress();
    void messagesAndTouchesAreServedDuringTheWait();
    void skippingThroughAnAlbumEndsOnTheLastCover();
    void thePageCanBeLeftDuringAFetch_data();
    void thePageCanBeLeftDuringAFetch();
    void theCoreCanGoDuringAFetch();
    void aPageThatIsLeftKeepsNoCoverFromTheNext_data();
    void aPageThatIsLeftKeepsNoCoverFromTheNext();
    void pagesAndTracksChangeInAnyOrder();
    void aSignalDuringAFetchEndsItCleanly_data();
    void aSignalDuringAFetchEndsItCleanly();

private:
    void play(const QString &key);
    bool showsCover(const QColor &colour) { return CoverView::shows(probe(), colour); }
    /** The part of the page that is of this colour; null where nothing is. */
    QRect partIn(const QColor &colour);
    // A picture takes its time, which QTRY_VERIFY would not count.
    bool coverBecomes(const QColor &colour)
    {
        return waitUntil([&] { return showsCover(colour); });
    }
    bool coverBecomesLogo()
    {
        return waitUntil([&] { return CoverView::showsLogo(probe()); });
    }

    Probe &probe() { return m_appliance->program.probe(); }

    std::unique_ptr<Appliance> m_appliance;
    bool m_complaintsExpected = false;
};

void TestCoverArt::init()
{
    m_complaintsExpected = false;
    m_appliance = std::make_unique<Appliance>();
    QVERIFY(m_appliance->startServices());
    m_appliance->publishZone("state", "playing");
    QVERIFY(m_appliance->services.flush());
    QVERIFY(m_appliance->program.startAndWait());
    QVERIFY(m_appliance->skipWelcome());
    QVERIFY(m_appliance->waitForPage("RoonPlayerWindow2"));
}

void TestCoverArt::cleanup()
{
    if (!m_complaintsExpected && !QTest::currentTestFailed()) {
        // Warnings of the scene engine carry a QML file's name or none at all.
        for (const LogLine &line : m_appliance->program.log()) {
            if (line.level == "WARN" && (line.file.isEmpty() || line.file.endsWith(".qml")))
                QTest::qFail(qPrintable(line.whole), __FILE__, __LINE__);
        }
    }
    if (m_appliance->program.isRunning() && !m_appliance->program.stop())
        QTest::qFail("the program did not end cleanly", __FILE__, __LINE__);
    m_appliance.reset();
}

void TestCoverArt::showsTheCoverOfTheTrack()
{
    m_appliance->images.setBehaviour("red", picture(Qt::red));
    play("red");
    QVERIFY(coverBecomes(Qt::red));
    QCOMPARE(m_appliance->images.requests().size(), 1);
    QCOMPARE(m_appliance->images.requests().first().line,
        QByteArray("GET /image/red?scale=fit&width=402&height=402&format=image/jpeg HTTP/1.1"));
}

void TestCoverArt::anyShapeIsSeenWhole_data()
{
    QTest::addColumn<QSize>("size");
    QTest::newRow("square") << QSize(402, 402);
    QTest::newRow("wide") << QSize(402, 201);
    QTest::newRow("high") << QSize(201, 402);
    QTest::newRow("small") << QSize(20, 20);
}

void TestCoverArt::anyShapeIsSeenWhole()
{
    QFETCH(QSize, size);
    Behaviour behaviour = picture(Qt::red);
    behaviour.format = "PNG";
    behaviour.size = size;
    m_appliance->images.setBehaviour("red", behaviour);
    play("red");
    QVERIFY(waitUntil([&] { return partIn(Qt::red).isValid(); }));
    const QRectF frame = CoverView::area(probe());
    QRectF place(QPointF(), QSizeF(size).scaled(frame.size(), Qt::KeepAspectRatio));
    place.moveCenter(frame.center());
    const QRect part = partIn(Qt::red);
    // Edges may lie between two pixels.
    QVERIFY2(part.adjusted(-1, -1, 1, 1).contains(place.toAlignedRect())
            && place.toAlignedRect().adjusted(-1, -1, 1, 1).contains(part),
        qPrintable(QString("%1x%2 at %3, %4")
                       .arg(part.width())
                       .arg(part.height())
                       .arg(part.left())
                       .arg(part.top())));
}

void TestCoverArt::fetchesACoverOnce()
{
    m_appliance->images.setBehaviour("red", picture(Qt::red));
    m_appliance->images.setBehaviour("green", picture(Qt::green));
    play("red");
    QVERIFY(coverBecomes(Qt::red));
    m_appliance->publishZone("nowPlaying/song", "another");
    m_appliance->publishZone("nowPlaying/imageKey", "red");
    QVERIFY(m_appliance->handled());
    QCOMPARE(m_appliance->images.requestsFor("red"), 1);

    play("green");
    QVERIFY(coverBecomes(Qt::green));
    play("red"); // only the last picture is kept
    QVERIFY(coverBecomes(Qt::red));
    QCOMPARE(m_appliance->images.requestsFor("red"), 2);
    QCOMPARE(m_appliance->program.count(Fetched), 3);
}

void TestCoverArt::oneFailureIsRetried()
{
    Behaviour behaviour = picture(Qt::blue);
    behaviour.failures = 1;
    behaviour.format = "PNG";
    m_appliance->images.setBehaviour("blue", behaviour);
    play("blue");
    QVERIFY(coverBecomes(Qt::blue));
    QCOMPARE(m_appliance->images.requestsFor("blue"), 2);
    QCOMPARE(m_appliance->program.count(Retrying), 1);
    QCOMPARE(m_appliance->program.count(Failed), 0);
}

void TestCoverArt::aFailingServiceLeavesTheLogo_data()
{
    QTest::addColumn<int>("kind");
    QTest::newRow("status 500") << int(Behaviour::Trouble);
    QTest::newRow("connection dropped") << int(Behaviour::Drop);
}

void TestCoverArt::aFailingServiceLeavesTheLogo()
{
    QFETCH(int, kind);
    m_appliance->images.setBehaviour("red", picture(Qt::red));
    m_appliance->images.setBehaviour("bad", Behaviour::of(Behaviour::Kind(kind)));
    play("red");
    QVERIFY(coverBecomes(Qt::red));
    play("bad");
    QVERIFY(m_appliance->program.waitForLine(Failed));
    QVERIFY(coverBecomesLogo());
    QCOMPARE(m_appliance->program.count(Retrying), 1);
    QCOMPARE(m_appliance->program.count(Failed), 1);
    // How often Qt itself tries again after a dropped connection is its own affair.
    if (kind == Behaviour::Trouble)
        QCOMPARE(m_appliance->images.requestsFor("bad"), 2);

    play("red");
    QVERIFY(coverBecomes(Qt::red));
    QCOMPARE(m_appliance->images.requestsFor("red"), 1); // a failure leaves the kept picture alone
}

void TestCoverArt::garbageIsLeftBehindWithItsTrack()
{
    m_complaintsExpected = true; // the engine says that it got no picture
    m_appliance->images.setBehaviour("garbage", Behaviour::of(Behaviour::Garbage));
    m_appliance->images.setBehaviour("red", picture(Qt::red));
    play("garbage");
    QVERIFY(m_appliance->program.waitForLine(Fetched));
    play("red");
    QVERIFY(coverBecomes(Qt::red));
}

void TestCoverArt::aLateCoverDoesNotReplaceTheWantedOne()
{
    m_appliance->images.setBehaviour("late", picture(Qt::red, 600));
    m_appliance->images.setBehaviour("wanted", picture(Qt::green));
    play("late");
    QTRY_COMPARE_WITH_TIMEOUT(m_appliance->images.requestsFor("late"), 1, PatienceMs);
    play("wanted");
    QVERIFY(coverBecomes(Qt::green));
    // Once the late fetch has ended there is none under way that could change the picture.
    QTRY_COMPARE_WITH_TIMEOUT(m_appliance->program.count(Fetched), 2, PatienceMs);
    QVERIFY(m_appliance->handled());
    QVERIFY(showsCover(Qt::green));
}

void TestCoverArt::aHangingServiceDoesNotKeepTheNextCoverAway()
{
    m_appliance->images.setBehaviour("red", picture(Qt::red));
    m_appliance->images.setBehaviour("hanging", Behaviour::of(Behaviour::Hang));
    m_appliance->images.setBehaviour("green", picture(Qt::green));
    play("red");
    QVERIFY(coverBecomes(Qt::red));
    play("hanging");
    QTRY_COMPARE_WITH_TIMEOUT(m_appliance->images.requestsFor("hanging"), 1, PatienceMs);
    // The cover of a track that is over does not stay under the title of another one.
    QVERIFY(coverBecomesLogo());
    play("green");
    QVERIFY(coverBecomes(Qt::green));
}

void TestCoverArt::aLateAddressBringsTheCover_data()
{
    QTest::addColumn<QByteArray>("before");
    QTest::newRow("none yet") << QByteArray();
    QTest::newRow("a dead one") << QByteArray("127.0.0.1:1");
}

void TestCoverArt::aLateAddressBringsTheCover()
{
    QFETCH(QByteArray, before);
    m_appliance->images.setBehaviour("red", picture(Qt::red));
    m_appliance->publishCore("serverUrl", before);
    play("red");
    QVERIFY(m_appliance->program.waitForLine(Failed));
    QVERIFY(coverBecomesLogo());
    m_appliance->publishCore("serverUrl", m_appliance->images.address());
    QVERIFY(coverBecomes(Qt::red));
    QCOMPARE(m_appliance->images.requestsFor("red"), 1);
}

void TestCoverArt::aCoreThatMovesIsAskedAtItsNewAddress_data()
{
    QTest::addColumn<int>("kind");
    QTest::newRow("while the old one hangs") << int(Behaviour::Hang);
    QTest::newRow("with its cover on view") << int(Behaviour::Picture);
}

void TestCoverArt::aCoreThatMovesIsAskedAtItsNewAddress()
{
    QFETCH(int, kind);
    ImageServer other;
    other.setBehaviour("cover", picture(Qt::green));
    Behaviour old = Behaviour::of(Behaviour::Kind(kind));
    old.colour = Qt::red;
    m_appliance->images.setBehaviour("cover", old);
    play("cover");
    if (kind == Behaviour::Picture)
        QVERIFY(coverBecomes(Qt::red));
    else
        QTRY_COMPARE_WITH_TIMEOUT(m_appliance->images.requestsFor("cover"), 1, PatienceMs);
    m_appliance->publishCore("serverUrl", other.address());
    QVERIFY(coverBecomes(Qt::green));
    QCOMPARE(m_appliance->images.requestsFor("cover"), 1);
    QCOMPARE(other.requestsFor("cover"), 1);
}

void TestCoverArt::messagesAndTouchesAreServedDuringTheWait()
{
    m_appliance->images.setBehaviour("hanging", Behaviour::of(Behaviour::Hang));
    play("hanging");
    QTRY_COMPARE_WITH_TIMEOUT(m_appliance->images.requestsFor("hanging"), 1, PatienceMs);
    m_appliance->publishZone("nowPlaying/artist", "Somebody");
    QTRY_COMPARE_WITH_TIMEOUT(m_appliance->program.probe().property("artist", "text"),
        QJsonValue("Somebody"), PatienceMs);
    QVERIFY(m_appliance->program.probe().tap("playPause"));
    QTRY_COMPARE_WITH_TIMEOUT(m_appliance->commands(),
        QList<QByteArray>({ R"({"command":"playpause","zone_id":"z1"})" }), PatienceMs);
}

void TestCoverArt::skippingThroughAnAlbumEndsOnTheLastCover()
{
    for (int track = 0; track < 50; ++track)
        m_appliance->images.setBehaviour(
            QString("track%1").arg(track), picture(QColor::fromHsv(track * 7, 255, 255), 40));
    const int objects = m_appliance->program.probe().alive(Probe::Target::type("QObject"));
    for (int track = 0; track < 50; ++track)
        play(QString("track%1").arg(track));
    const QColor last = QColor::fromHsv(49 * 7, 255, 255);
    QVERIFY(coverBecomes(last));
    QVERIFY(m_appliance->handled());
    QVERIFY(showsCover(last));
    QCOMPARE(m_appliance->program.probe().alive("RoonPlayerWindow2"), 1);
    // Fetches do not pile up: what one skip leaves behind would be there fifty times.
    QTRY_VERIFY_WITH_TIMEOUT(
        m_appliance->program.probe().alive(Probe::Target::type("QObject")) < objects + 50,
        PatienceMs);
    QVERIFY(m_appliance->images.requests().size() <= 50);
}

void TestCoverArt::thePageCanBeLeftDuringAFetch_data()
{
    QTest::addColumn<bool>("hangs");
    QTest::newRow("slow service") << false;
    QTest::newRow("hanging service") << true;
}

void TestCoverArt::thePageCanBeLeftDuringAFetch()
{
    QFETCH(bool, hangs);
    m_appliance->images.setBehaviour(
        "away", hangs ? Behaviour::of(Behaviour::Hang) : picture(Qt::red, 500));
    m_appliance->images.setBehaviour("back", picture(Qt::green));
    play("away");
    QTRY_COMPARE_WITH_TIMEOUT(m_appliance->images.requestsFor("away"), 1, PatienceMs);
    m_appliance->sendCommand(R"({"command":"toggle_standby"})");
    QVERIFY(m_appliance->waitForPage("Clock"));
    play("back");
    m_appliance->sendCommand(R"({"command":"toggle_standby"})");
    QVERIFY(m_appliance->waitForPage("ScreenSaver"));
    m_appliance->sendCommand(R"({"command":"toggle_standby"})");
    QVERIFY(m_appliance->waitForPage("RoonPlayerWindow2"));
    QVERIFY(coverBecomes(Qt::green));
}

void TestCoverArt::theCoreCanGoDuringAFetch()
{
    m_appliance->images.setBehaviour("away", Behaviour::of(Behaviour::Hang));
    m_appliance->images.setBehaviour("back", picture(Qt::green));
    play("away");
    QTRY_COMPARE_WITH_TIMEOUT(m_appliance->images.requestsFor("away"), 1, PatienceMs);
    m_appliance->publishCore("coreDetected", "false");
    QVERIFY(m_appliance->waitForPage("RoonConnectionFailure"));
    play("back");
    m_appliance->publishCore("coreDetected", "true");
    QVERIFY(m_appliance->waitForPage("RoonPlayerWindow2"));
    QVERIFY(coverBecomes(Qt::green));
}

void TestCoverArt::aPageThatIsLeftKeepsNoCoverFromTheNext_data()
{
    QTest::addColumn<bool>("byCore");
    // Which of the program's turns sees what of a burst is a matter of chance.
    for (int attempt = 0; attempt < 4; ++attempt) {
        QTest::addRow("core, %d", attempt) << true;
        QTest::addRow("standby, %d", attempt) << false;
    }
}

void TestCoverArt::aPageThatIsLeftKeepsNoCoverFromTheNext()
{
    QFETCH(bool, byCore);
    m_appliance->images.setBehaviour("hanging", Behaviour::of(Behaviour::Hang));
    m_appliance->images.setBehaviour("last", picture(Qt::green));
    for (int burst = 0; burst < 5; ++burst) {
        play("hanging");
        if (byCore) {
            m_appliance->publishCore("coreDetected", "false");
            m_appliance->publishCore("coreDetected", "true");
        } else {
            for (int press = 0; press < 3; ++press)
                m_appliance->sendCommand(R"({"command":"toggle_standby"})");
        }
        play("last");
        QVERIFY(m_appliance->waitForPage("RoonPlayerWindow2"));
        QVERIFY(coverBecomes(Qt::green));
        QTRY_COMPARE_WITH_TIMEOUT(
            m_appliance->program.probe().alive("RoonPlayerWindow2"), 1, PatienceMs);
    }
}

void TestCoverArt::pagesAndTracksChangeInAnyOrder()
{
    m_complaintsExpected = true; // garbage is among the answers
    m_appliance->images.setBehaviour("slow", picture(Qt::red, 300));
    m_appliance->images.setBehaviour("hanging", Behaviour::of(Behaviour::Hang));
    m_appliance->images.setBehaviour("dropping", Behaviour::of(Behaviour::Drop));
    m_appliance->images.setBehaviour("trouble", Behaviour::of(Behaviour::Trouble));
    m_appliance->images.setBehaviour("garbage", Behaviour::of(Behaviour::Garbage));
    m_appliance->images.setBehaviour("last", picture(Qt::green));
    const QStringList keys { "slow", "hanging", "dropping", "trouble", "garbage" };
    for (int round = 0; round < 60; ++round) {
        play(keys.at(round % keys.size()));
        // Now and then the page goes at the very moment at which its picture is under way.
        if (round % 3 == 0) {
            m_appliance->publishCore("coreDetected", "false");
            m_appliance->publishCore("coreDetected", "true");
        }
        if (round % 4 == 0)
            QVERIFY(m_appliance->handled());
    }
    play("last");
    QVERIFY(m_appliance->waitForPage("RoonPlayerWindow2"));
    QVERIFY(coverBecomes(Qt::green));
    QCOMPARE(m_appliance->program.count(Line::any("Binding loop").andMore()), 0);
}

void TestCoverArt::aSignalDuringAFetchEndsItCleanly_data()
{
    QTest::addColumn<int>("number");
    QTest::newRow("SIGTERM") << SIGTERM;
    QTest::newRow("SIGINT") << SIGINT;
}

void TestCoverArt::aSignalDuringAFetchEndsItCleanly()
{
    QFETCH(int, number);
    m_appliance->images.setBehaviour("hanging", Behaviour::of(Behaviour::Hang));
    play("hanging");
    QTRY_COMPARE_WITH_TIMEOUT(m_appliance->images.requestsFor("hanging"), 1, PatienceMs);
    m_appliance->program.sendSignal(number);
    QVERIFY(m_appliance->program.waitForExit());
    QCOMPARE(m_appliance->program.exitStatus(), 0);
    QCOMPARE(m_appliance->program.log().last().withoutPlace(),
        QString("INFO  Left main event loop with exit code 0"));
    QCOMPARE(m_appliance->program.count(Fetched), 0);
    QCOMPARE(m_appliance->program.count(Retrying), 0);
    QCOMPARE(m_appliance->program.count(Failed), 0);
}

void TestCoverArt::play(const QString &key)
{
    m_appliance->publishZone("nowPlaying/song", key.toUtf8());
    m_appliance->publishZone("nowPlaying/imageKey", key.toUtf8());
}

QRect TestCoverArt::partIn(const QColor &colour)
{
    const QImage page = m_appliance->program.probe().picture();
    QRect part;
    for (int y = 0; y < page.height(); ++y) {
        for (int x = 0; x < page.width(); ++x) {
            if (page.pixelColor(x, y) == colour)
                part |= QRect(x, y, 1, 1);
        }
    }
    return part;
}

QTEST_GUILESS_MAIN(TestCoverArt)
#include "tst_coverart.moc"
