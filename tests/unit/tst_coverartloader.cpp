// SPDX-License-Identifier: GPL-3.0-or-later
#include "coverartloader.h"
#include "coverbehaviour.h"
#include "imageprovider.h"
#include "logcapture.h"
#include "metatable.h"
#include "roon.h"

#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickWindow>
#include <QRandomGenerator>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>

#include <limits>
#include <memory>

namespace {

// The requests of a test take their time from here, milliseconds; a loader's own patience is 1000.
constexpr int SlowMs = 200;
constexpr int VerySlowMs = 1600;

/** The real provider, which also tells how deep its calls are nested. */
class WatchedProvider : public ImageProvider {
public:
    WatchedProvider()
        : ImageProvider(QQmlImageProviderBase::Image)
    {
    }

    QImage requestImage(const QString &id, QSize *size, const QSize &requestedSize) override
    {
        const char here = 0;
        const quintptr frame = reinterpret_cast<quintptr>(&here);
        lowestFrame = qMin(lowestFrame, frame);
        highestFrame = qMax(highestFrame, frame);
        deepest = qMax(deepest, ++depth);
        const QImage image = ImageProvider::requestImage(id, size, requestedSize);
        --depth;
        return image;
    }

    int depth = 0;
    int deepest = 0;
    quintptr lowestFrame = std::numeric_limits<quintptr>::max(); ///< on the stack, of any call
    quintptr highestFrame = 0;
};

QUrl urlOf(const QString &id)
{
    return QUrl(QStringLiteral("image://velunor/") + id);
}

QUrl logo()
{
    return urlOf(QStringLiteral("__VELUNOR_LOGO__"));
}

/**
 * Runs @p action once, as soon as @p condition holds.  A loader's fetch waits in an event loop of
 * its own, and the test function below it does not go on before the fetch has ended: what a test
 * does during a fetch, it does from here.
 */
template <typename Condition, typename Action> void when(Condition condition, Action action)
{
    auto *const poll = new QTimer(QCoreApplication::instance());
    QObject::connect(poll, &QTimer::timeout, poll, [=] {
        if (!condition())
            return;
        poll->stop();
        poll->deleteLater();
        action();
    });
    poll->start(1);
}

CoverArtLoader *loaderOf(const QQuickItem *page)
{
    return page->property("covers").value<CoverArtLoader *>();
}

/** What a picture item does with a loader's source: loads it whenever its address changes. */
class PictureItem : public QObject {
public:
    PictureItem(CoverArtLoader *loader, ImageProvider *provider)
    {
        connect(loader, &CoverArtLoader::sourceChanged, this, [this, loader, provider] {
            if (loader->source() == m_source)
                return;
            m_source = loader->source();
            const QString id = m_source.toString(QUrl::RemoveScheme | QUrl::RemoveAuthority).mid(1);
            shown = m_source.isEmpty() ? QImage() : provider->requestImage(id, nullptr, QSize());
        });
    }

    QColor colour() const { return shown.isNull() ? QColor() : shown.pixelColor(0, 0); }

    QImage shown;

private:
    QUrl m_source;
};

/** The sources that a loader has offered, in order. */
class Offers : public QObject {
public:
    explicit Offers(CoverArtLoader *loader)
    {
        connect(loader, &CoverArtLoader::sourceChanged, this,
            [this, loader] { list.append(loader->source()); });
    }

    QList<QUrl> list;
};

} // namespace

class TestCoverArtLoader : public QObject {
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void metaObjectIsTheInterface();
    void startsEmpty();
    void takesEffectFromTheEventLoop();
    void sameWishTwiceIsOneWish();
    void reservedIdsAreOfferedWithoutAFetch_data();
    void reservedIdsAreOfferedWithoutAFetch();
    void withoutAnEngineTheWishIsOffered();
    void offersAPictureThatCanBeHadAtOnce();
    void waitingIsNotifiedAroundTheFetch();
    void quickFetchShowsNoLogo();
    void skippedTracksEndWithTheLast();
    void hangingFetchIsAbandonedForAnotherWish();
    void fetchThatHasHadItsSecondIsAbandonedAtOnce();
    void logoIsShownWhileAFetchTakesLong();
    void failedFetchShowsTheLogo_data();
    void failedFetchShowsTheLogo();
    void keyThatFailedIsFetchedAgain();
    void bodyThatIsNoPictureIsOffered();
    void serverThatMovesDuringTheFetchIsAskedAgain();
    void addressThatComesLateIsUsedAtOnce_data();
    void addressThatComesLateIsUsedAtOnce();
    void coreThatMovesEndsTheWaitForItsOldAddress();
    void coverOnViewIsFetchedAgainWhereTheCoreIsNow();
    void sameAddressAgainFetchesNothing();
    void addressWithoutAWantedCoverFetchesNothing();
    void everyLoaderHearsOfTheMove();
    void reservedIdDuringAFetchIsOfferedAfterIt();
    void wishThatReturnsDuringItsFetchIsFetchedOnce();
    void destroyedLoaderAbandonsItsFetch();
    void nextLoaderIsServedAfterADestroyedOne();
    void loaderThatNobodyStopsIsNotWaitedForLong();
    void loaderOfAPageFetchesInAWindowOnly();
    void pageThatIsLeftHurriesNobody();
    void pageThatComesWhileAnotherHangsIsServed();
    void everyLoaderThatWaitsIsServed();
    void loaderThatWaitsIsServedBeforeAFurtherWish();
    void destroyedLoaderThatWaitsIsForgotten();
    void quitEndsAHangingFetch();
    void manySkipsDoNotNest();
    void randomWishesEndWithTheLast();

private:
    CoverArtLoader *create();
    /** A page in no window, with a loader of its own; the caller's. */
    QQuickItem *createPage();
    /** Runs @p action once the server has been asked for the picture @p key. */
    template <typename Action> void whenAskedFor(const char *key, Action action)
    {
        when([this, key] { return requestsFor(key) > 0; }, action);
    }
    /** Wants a cover, which is not to be had this once: the logo is shown. */
    void failToFetchOnce(const char *key);
    /** Wants one cover; while it is being fetched, another, and a third a moment later. */
    void wantDuringAFetch(const char *first, const char *second, const char *third);
    int requestsFor(const char *key) const
    {
        return m_server->requestsFor(QString::fromLatin1(key));
    }

    std::unique_ptr<ImageServer> m_server;
    std::unique_ptr<QQmlEngine> m_engine;
    WatchedProvider *m_provider = nullptr; // the engine's
    CoverArtLoader *m_loader = nullptr;    // the engine's, like all that create() makes
};

void TestCoverArtLoader::initTestCase()
{
    qmlRegisterType<CoverArtLoader>("Velunor.Images", 1, 0, "CoverArtLoader");
}

void TestCoverArtLoader::init()
{
    m_server = std::make_unique<ImageServer>();
    moveCoreTo(*m_server);
    m_engine = std::make_unique<QQmlEngine>();
    m_provider = new WatchedProvider;
    m_engine->addImageProvider(QStringLiteral("velunor"), m_provider);
    m_loader = create();
    QVERIFY(m_loader);
}

void TestCoverArtLoader::cleanup()
{
    QCOMPARE(m_provider->depth, 0);
    QVERIFY(m_provider->deepest <= 1);
    m_engine.reset();
    m_server.reset();
}

CoverArtLoader *TestCoverArtLoader::create()
{
    QQmlComponent component(m_engine.get());
    component.setData("import Velunor.Images 1.0\nCoverArtLoader {}", QUrl());
    auto *const loader = qobject_cast<CoverArtLoader *>(component.create());
    if (loader)
        loader->setParent(m_engine.get());
    return loader;
}

void TestCoverArtLoader::failToFetchOnce(const char *key)
{
    ImageServer::Behaviour failing = png(Qt::red);
    failing.failures = 2; // the request and its retry
    m_server->setBehaviour(QString::fromLatin1(key), failing);
    m_loader->setWanted(urlOf(QString::fromLatin1(key)));
    QTRY_COMPARE(m_loader->source(), logo());
}

void TestCoverArtLoader::wantDuringAFetch(const char *first, const char *second, const char *third)
{
    m_loader->setWanted(urlOf(QString::fromLatin1(first)));
    whenAskedFor(first, [this, second, third] {
        m_loader->setWanted(urlOf(QString::fromLatin1(second)));
        QTimer::singleShot(
            1, m_loader, [this, third] { m_loader->setWanted(urlOf(QString::fromLatin1(third))); });
    });
}

QQuickItem *TestCoverArtLoader::createPage()
{
    QQmlComponent component(m_engine.get());
    component.setData("import QtQuick 2.15\nimport Velunor.Images 1.0\n"
                      "Item { property CoverArtLoader covers: CoverArtLoader {} }",
        QUrl());
    auto *const page = qobject_cast<QQuickItem *>(component.create());
    if (!page)
        qFatal("%s", qPrintable(component.errorString()));
    return page;
}

void TestCoverArtLoader::metaObjectIsTheInterface()
{
    const QMetaObject &meta = CoverArtLoader::staticMetaObject;
    QCOMPARE(meta.superClass(), &QObject::staticMetaObject);
    QCOMPARE(propertyTable(meta),
        QStringList({ "QUrl wanted read write wantedChanged()", "QUrl source read sourceChanged()",
            "bool waiting read waitingChanged()" }));
    QCOMPARE(methodTable(meta),
        QStringList({ "public signal wantedChanged()", "public signal sourceChanged()",
            "public signal waitingChanged()" }));
}

void TestCoverArtLoader::startsEmpty()
{
    QCOMPARE(m_loader->wanted(), QUrl());
    QCOMPARE(m_loader->source(), QUrl());
    QVERIFY(!m_loader->isWaiting());
}

void TestCoverArtLoader::takesEffectFromTheEventLoop()
{
    m_server->setBehaviour(QStringLiteral("A"), png(Qt::red));
    QSignalSpy wantedChanged(m_loader, &CoverArtLoader::wantedChanged);
    m_loader->setWanted(urlOf(QStringLiteral("A")));
    QCOMPARE(wantedChanged.count(), 1);
    QCOMPARE(m_loader->source(), QUrl());
    QVERIFY(!m_loader->isWaiting());
    QCOMPARE(m_provider->deepest, 0);
    QTRY_COMPARE(m_loader->source(), urlOf(QStringLiteral("A")));

    m_loader->setWanted(logo());
    QCOMPARE(m_loader->source(), urlOf(QStringLiteral("A")));
    QTRY_COMPARE(m_loader->source(), logo());
}

void TestCoverArtLoader::sameWishTwiceIsOneWish()
{
    m_server->setBehaviour(QStringLiteral("A"), png(Qt::red));
    QSignalSpy wantedChanged(m_loader, &CoverArtLoader::wantedChanged);
    QSignalSpy sourceChanged(m_loader, &CoverArtLoader::sourceChanged);
    m_loader->setWanted(urlOf(QStringLiteral("A")));
    m_loader->setWanted(urlOf(QStringLiteral("A")));
    QTRY_COMPARE(m_loader->source(), urlOf(QStringLiteral("A")));
    m_loader->setWanted(urlOf(QStringLiteral("A")));
    QCoreApplication::processEvents();
    QCOMPARE(wantedChanged.count(), 1);
    QCOMPARE(sourceChanged.count(), 1);
    QCOMPARE(requestsFor("A"), 1);
}

void TestCoverArtLoader::reservedIdsAreOfferedWithoutAFetch_data()
{
    QTest::addColumn<QUrl>("url");
    QTest::newRow("logo") << logo();
    QTest::newRow("no picture") << urlOf(QStringLiteral("NO_IMAGE"));
    QTest::newRow("empty id") << urlOf(QString());
}

void TestCoverArtLoader::reservedIdsAreOfferedWithoutAFetch()
{
    QFETCH(QUrl, url);
    QSignalSpy waitingChanged(m_loader, &CoverArtLoader::waitingChanged);
    m_loader->setWanted(url);
    QTRY_COMPARE(m_loader->source(), url);
    QCOMPARE(waitingChanged.count(), 0);
    QCOMPARE(m_provider->deepest, 0);
    QCOMPARE(m_server->requests().size(), 0);
}

void TestCoverArtLoader::withoutAnEngineTheWishIsOffered()
{
    CoverArtLoader loader;
    loader.setWanted(urlOf(QStringLiteral("A")));
    QTRY_COMPARE(loader.source(), urlOf(QStringLiteral("A")));
    QCOMPARE(m_server->requests().size(), 0);
}

void TestCoverArtLoader::offersAPictureThatCanBeHadAtOnce()
{
    m_server->setBehaviour(QStringLiteral("A b/c"), png(Qt::red));
    const PictureItem item(m_loader, m_provider);
    m_loader->setWanted(urlOf(QStringLiteral("A b/c")));
    QTRY_COMPARE(item.colour(), QColor(Qt::red));
    QCOMPARE(requestsFor("A b/c"), 1);
}

void TestCoverArtLoader::waitingIsNotifiedAroundTheFetch()
{
    m_server->setBehaviour(QStringLiteral("A"), png(Qt::red, SlowMs));
    QStringList events;
    connect(m_loader, &CoverArtLoader::waitingChanged, this,
        [&] { events.append(m_loader->isWaiting() ? "waits" : "waits no more"); });
    connect(m_loader, &CoverArtLoader::sourceChanged, this, [&] { events.append("offers"); });
    m_loader->setWanted(urlOf(QStringLiteral("A")));
    QTRY_COMPARE(events, QStringList({ "waits", "waits no more", "offers" }));
}

void TestCoverArtLoader::quickFetchShowsNoLogo()
{
    m_server->setBehaviour(QStringLiteral("A"), png(Qt::red, SlowMs));
    m_server->setBehaviour(QStringLiteral("B"), png(Qt::blue, SlowMs));
    const Offers offers(m_loader);
    m_loader->setWanted(urlOf(QStringLiteral("A")));
    QTRY_COMPARE(m_loader->source(), urlOf(QStringLiteral("A")));
    m_loader->setWanted(urlOf(QStringLiteral("B")));
    QTRY_COMPARE(m_loader->source(), urlOf(QStringLiteral("B")));
    QCOMPARE(offers.list, QList<QUrl>({ urlOf(QStringLiteral("A")), urlOf(QStringLiteral("B")) }));
}

void TestCoverArtLoader::skippedTracksEndWithTheLast()
{
    for (const char *key : { "A", "B", "C" })
        m_server->setBehaviour(QString::fromLatin1(key), png(Qt::red, SlowMs));
    const Offers offers(m_loader);
    wantDuringAFetch("A", "B", "C");
    QTRY_COMPARE(m_loader->source(), urlOf(QStringLiteral("C")));
    QCOMPARE(offers.list, QList<QUrl>({ urlOf(QStringLiteral("C")) }));
    QCOMPARE(requestsFor("A"), 1);
    QCOMPARE(requestsFor("B"), 0);
    QCOMPARE(requestsFor("C"), 1);
}

void TestCoverArtLoader::hangingFetchIsAbandonedForAnotherWish()
{
    m_server->setBehaviour(
        QStringLiteral("A"), ImageServer::Behaviour::of(ImageServer::Behaviour::Hang));
    m_server->setBehaviour(QStringLiteral("B"), png(Qt::blue));
    const Offers offers(m_loader);
    m_loader->setWanted(urlOf(QStringLiteral("A")));
    whenAskedFor("A", [this] { m_loader->setWanted(urlOf(QStringLiteral("B"))); });
    QTRY_COMPARE(m_loader->source(), urlOf(QStringLiteral("B")));
    QCOMPARE(offers.list, QList<QUrl>({ urlOf(QStringLiteral("B")) }));
    QCOMPARE(requestsFor("A"), 1);
}

void TestCoverArtLoader::fetchThatHasHadItsSecondIsAbandonedAtOnce()
{
    m_server->setBehaviour(
        QStringLiteral("A"), ImageServer::Behaviour::of(ImageServer::Behaviour::Hang));
    m_server->setBehaviour(QStringLiteral("B"), png(Qt::blue));
    const Offers offers(m_loader);
    bool waited = false;
    m_loader->setWanted(urlOf(QStringLiteral("A")));
    when([this] { return m_loader->source() == logo(); },
        [this, &waited] {
            waited = m_loader->isWaiting();
            m_loader->setWanted(urlOf(QStringLiteral("B")));
        });
    QTRY_COMPARE(m_loader->source(), urlOf(QStringLiteral("B")));
    QVERIFY(waited);
    QCOMPARE(offers.list, QList<QUrl>({ logo(), urlOf(QStringLiteral("B")) }));
    QCOMPARE(requestsFor("A"), 1);
}

void TestCoverArtLoader::logoIsShownWhileAFetchTakesLong()
{
    m_server->setBehaviour(QStringLiteral("A"), png(Qt::red, VerySlowMs));
    const Offers offers(m_loader);
    m_loader->setWanted(urlOf(QStringLiteral("A")));
    QTRY_COMPARE(m_loader->source(), urlOf(QStringLiteral("A")));
    QCOMPARE(offers.list, QList<QUrl>({ logo(), urlOf(QStringLiteral("A")) }));
    QCOMPARE(requestsFor("A"), 1);
}

void TestCoverArtLoader::failedFetchShowsTheLogo_data()
{
    QTest::addColumn<int>("what");
    QTest::newRow("status 500") << int(ImageServer::Behaviour::Trouble);
    QTest::newRow("connection dropped") << int(ImageServer::Behaviour::Drop);
}

void TestCoverArtLoader::failedFetchShowsTheLogo()
{
    QFETCH(int, what);
    m_server->setBehaviour(QStringLiteral("A"), png(Qt::red));
    m_server->setBehaviour(QStringLiteral("bad"),
        ImageServer::Behaviour::of(static_cast<ImageServer::Behaviour::Kind>(what)));
    const Offers offers(m_loader);
    m_loader->setWanted(urlOf(QStringLiteral("A")));
    QTRY_COMPARE(m_loader->source(), urlOf(QStringLiteral("A")));
    m_loader->setWanted(urlOf(QStringLiteral("bad")));
    QTRY_COMPARE(m_loader->source(), logo());
    QTRY_VERIFY(!m_loader->isWaiting());
    QCOMPARE(offers.list, QList<QUrl>({ urlOf(QStringLiteral("A")), logo() }));
}

void TestCoverArtLoader::keyThatFailedIsFetchedAgain()
{
    failToFetchOnce("A");
    QCOMPARE(requestsFor("A"), 2);
    m_loader->setWanted(urlOf(QStringLiteral("NO_IMAGE")));
    QTRY_COMPARE(m_loader->source(), urlOf(QStringLiteral("NO_IMAGE")));
    m_loader->setWanted(urlOf(QStringLiteral("A")));
    QTRY_COMPARE(m_loader->source(), urlOf(QStringLiteral("A")));
    QCOMPARE(requestsFor("A"), 3);
}

void TestCoverArtLoader::bodyThatIsNoPictureIsOffered()
{
    m_server->setBehaviour(
        QStringLiteral("A"), ImageServer::Behaviour::of(ImageServer::Behaviour::Garbage));
    m_loader->setWanted(urlOf(QStringLiteral("A")));
    QTRY_COMPARE(m_loader->source(), urlOf(QStringLiteral("A")));
    QCOMPARE(requestsFor("A"), 1);
}

void TestCoverArtLoader::serverThatMovesDuringTheFetchIsAskedAgain()
{
    ImageServer other;
    m_server->setBehaviour(QStringLiteral("A"), png(Qt::red, SlowMs));
    other.setBehaviour(QStringLiteral("A"), png(Qt::blue));
    const Offers offers(m_loader);
    m_loader->setWanted(urlOf(QStringLiteral("A")));
    whenAskedFor("A", [&other] { moveCoreTo(other); });
    QTRY_COMPARE(m_loader->source(), urlOf(QStringLiteral("A")));
    QCOMPARE(offers.list.size(), 1);
    QCOMPARE(requestsFor("A"), 1);
    QCOMPARE(other.requestsFor(QStringLiteral("A")), 1);
    QCOMPARE(m_provider->requestImage(QStringLiteral("A"), nullptr, QSize()).pixelColor(0, 0),
        QColor(Qt::blue));
}

void TestCoverArtLoader::addressThatComesLateIsUsedAtOnce_data()
{
    QTest::addColumn<QString>("before");
    QTest::newRow("none") << QString();
    QTest::newRow("dead") << QStringLiteral("127.0.0.1:1");
    QTest::newRow("no address") << QStringLiteral("not an address");
}

void TestCoverArtLoader::addressThatComesLateIsUsedAtOnce()
{
    QFETCH(QString, before);
    m_server->setBehaviour(QStringLiteral("A"), png(Qt::red));
    Roon::instance()->setServerUrl(before);
    m_loader->setWanted(urlOf(QStringLiteral("A")));
    QTRY_COMPARE(m_loader->source(), logo());
    QTRY_VERIFY(!m_loader->isWaiting());
    moveCoreTo(*m_server);
    QTRY_COMPARE(m_loader->source(), urlOf(QStringLiteral("A")));
    QCOMPARE(requestsFor("A"), 1);
}

void TestCoverArtLoader::coreThatMovesEndsTheWaitForItsOldAddress()
{
    ImageServer other;
    m_server->setBehaviour(
        QStringLiteral("A"), ImageServer::Behaviour::of(ImageServer::Behaviour::Hang));
    other.setBehaviour(QStringLiteral("A"), png(Qt::blue));
    const Offers offers(m_loader);
    m_loader->setWanted(urlOf(QStringLiteral("A")));
    whenAskedFor("A", [&other] { moveCoreTo(other); });
    QTRY_COMPARE(m_loader->source(), urlOf(QStringLiteral("A")));
    // Not even the second that a fetch is given has passed: the logo was never needed.
    QCOMPARE(offers.list, QList<QUrl>({ urlOf(QStringLiteral("A")) }));
    QCOMPARE(requestsFor("A"), 1);
    QCOMPARE(other.requestsFor(QStringLiteral("A")), 1);
}

void TestCoverArtLoader::coverOnViewIsFetchedAgainWhereTheCoreIsNow()
{
    ImageServer other;
    m_server->setBehaviour(QStringLiteral("A"), png(Qt::red));
    other.setBehaviour(QStringLiteral("A"), png(Qt::blue));
    const PictureItem item(m_loader, m_provider);
    m_loader->setWanted(urlOf(QStringLiteral("A")));
    QTRY_COMPARE(item.colour(), QColor(Qt::red));
    moveCoreTo(other);
    QTRY_COMPARE(item.colour(), QColor(Qt::blue));
    QCOMPARE(m_loader->source(), urlOf(QStringLiteral("A")));
    QCOMPARE(requestsFor("A"), 1);
    QCOMPARE(other.requestsFor(QStringLiteral("A")), 1);
}

void TestCoverArtLoader::sameAddressAgainFetchesNothing()
{
    failToFetchOnce("A");
    moveCoreTo(*m_server);
    QCoreApplication::processEvents();
    QCOMPARE(m_provider->depth, 0); // a fetch would have begun by now
    QCOMPARE(requestsFor("A"), 2);
    QCOMPARE(m_loader->source(), logo());
}

void TestCoverArtLoader::addressWithoutAWantedCoverFetchesNothing()
{
    ImageServer other;
    m_loader->setWanted(logo());
    QTRY_COMPARE(m_loader->source(), logo());
    const Offers offers(m_loader);
    moveCoreTo(other);
    QCoreApplication::processEvents();
    QCOMPARE(offers.list, QList<QUrl>());
    QCOMPARE(other.requests().size(), 0);
    QCOMPARE(m_provider->deepest, 0);
}

void TestCoverArtLoader::everyLoaderHearsOfTheMove()
{
    CoverArtLoader *const second = create();
    m_server->setBehaviour(QStringLiteral("A"), png(Qt::red));
    m_server->setBehaviour(QStringLiteral("B"), png(Qt::blue));
    Roon::instance()->setServerUrl(QString());
    m_loader->setWanted(urlOf(QStringLiteral("A")));
    second->setWanted(urlOf(QStringLiteral("B")));
    CoverArtLoader *const gone = create();
    gone->setWanted(urlOf(QStringLiteral("C")));
    QTRY_COMPARE(m_loader->source(), logo());
    QTRY_COMPARE(second->source(), logo());
    QTRY_COMPARE(gone->source(), logo());
    delete gone;
    moveCoreTo(*m_server);
    QTRY_COMPARE(m_loader->source(), urlOf(QStringLiteral("A")));
    QTRY_COMPARE(second->source(), urlOf(QStringLiteral("B")));
    QCOMPARE(requestsFor("C"), 0);
}

void TestCoverArtLoader::reservedIdDuringAFetchIsOfferedAfterIt()
{
    m_server->setBehaviour(QStringLiteral("A"), png(Qt::red, SlowMs));
    const Offers offers(m_loader);
    m_loader->setWanted(urlOf(QStringLiteral("A")));
    whenAskedFor("A", [this] { m_loader->setWanted(urlOf(QStringLiteral("NO_IMAGE"))); });
    QTRY_COMPARE(m_loader->source(), urlOf(QStringLiteral("NO_IMAGE")));
    QVERIFY(!m_loader->isWaiting());
    QCOMPARE(offers.list, QList<QUrl>({ urlOf(QStringLiteral("NO_IMAGE")) }));
}

void TestCoverArtLoader::wishThatReturnsDuringItsFetchIsFetchedOnce()
{
    m_server->setBehaviour(QStringLiteral("A"), png(Qt::red, SlowMs));
    m_server->setBehaviour(QStringLiteral("B"), png(Qt::blue));
    const Offers offers(m_loader);
    wantDuringAFetch("A", "B", "A");
    QTRY_COMPARE(m_loader->source(), urlOf(QStringLiteral("A")));
    QVERIFY(!m_loader->isWaiting());
    QCoreApplication::processEvents();
    QCOMPARE(offers.list, QList<QUrl>({ urlOf(QStringLiteral("A")) }));
    QCOMPARE(requestsFor("A"), 1);
    QCOMPARE(requestsFor("B"), 0);
}

void TestCoverArtLoader::destroyedLoaderAbandonsItsFetch()
{
    m_server->setBehaviour(
        QStringLiteral("A"), ImageServer::Behaviour::of(ImageServer::Behaviour::Hang));
    m_loader->setWanted(urlOf(QStringLiteral("A")));
    bool destroyed = false;
    whenAskedFor("A", [this, &destroyed] {
        delete m_loader;
        destroyed = true;
    });
    QTRY_VERIFY(destroyed);
    QTRY_COMPARE(m_provider->depth, 0);
    QCOMPARE(requestsFor("A"), 1);
}

void TestCoverArtLoader::nextLoaderIsServedAfterADestroyedOne()
{
    m_server->setBehaviour(
        QStringLiteral("A"), ImageServer::Behaviour::of(ImageServer::Behaviour::Hang));
    m_server->setBehaviour(QStringLiteral("B"), png(Qt::blue));
    CoverArtLoader *const next = create();
    m_loader->setWanted(urlOf(QStringLiteral("A")));
    int requestsBefore = -1;
    whenAskedFor("A", [&] {
        next->setWanted(urlOf(QStringLiteral("B")));
        QTimer::singleShot(10, next, [&] {
            requestsBefore = requestsFor("B");
            delete m_loader;
        });
    });
    QTRY_COMPARE(next->source(), urlOf(QStringLiteral("B")));
    QCOMPARE(requestsBefore, 0);
}

void TestCoverArtLoader::loaderThatNobodyStopsIsNotWaitedForLong()
{
    m_server->setBehaviour(
        QStringLiteral("A"), ImageServer::Behaviour::of(ImageServer::Behaviour::Hang));
    m_server->setBehaviour(QStringLiteral("B"), png(Qt::blue));
    CoverArtLoader *const next = create();
    m_loader->setWanted(urlOf(QStringLiteral("A")));
    whenAskedFor("A", [next] { next->setWanted(urlOf(QStringLiteral("B"))); });
    QTRY_COMPARE(next->source(), urlOf(QStringLiteral("B")));
    QTRY_COMPARE(m_loader->source(), logo());
    QCOMPARE(requestsFor("A"), 1);
}

void TestCoverArtLoader::loaderOfAPageFetchesInAWindowOnly()
{
    m_server->setBehaviour(QStringLiteral("A"), png(Qt::red));
    const QScopedPointer<QQuickItem> page(createPage());
    auto *const covers = loaderOf(page.data());
    covers->setWanted(urlOf(QStringLiteral("A")));
    QCoreApplication::processEvents();
    QCOMPARE(m_provider->deepest, 0);

    QQuickWindow window;
    page->setParentItem(window.contentItem());
    QTRY_COMPARE(covers->source(), urlOf(QStringLiteral("A")));

    page->setParentItem(nullptr); // as a page is left
    covers->setWanted(urlOf(QStringLiteral("B")));
    QCoreApplication::processEvents();
    QCOMPARE(requestsFor("B"), 0);
    QCOMPARE(m_provider->depth, 0);
}

void TestCoverArtLoader::pageThatIsLeftHurriesNobody()
{
    m_server->setBehaviour(QStringLiteral("A"), png(Qt::red, VerySlowMs));
    QQuickWindow window;
    const QScopedPointer<QQuickItem> never(createPage());
    const QScopedPointer<QQuickItem> left(createPage());
    left->setParentItem(window.contentItem());
    m_loader->setWanted(urlOf(QStringLiteral("A")));
    whenAskedFor("A", [&] {
        loaderOf(never.data())->setWanted(urlOf(QStringLiteral("B")));
        loaderOf(left.data())->setWanted(urlOf(QStringLiteral("B")));
        QTimer::singleShot(SlowMs, left.data(), [&] { left->setParentItem(nullptr); });
    });
    QTRY_COMPARE(m_loader->source(), urlOf(QStringLiteral("A")));
    QCoreApplication::processEvents();
    QCOMPARE(requestsFor("B"), 0);
}

void TestCoverArtLoader::pageThatComesWhileAnotherHangsIsServed()
{
    m_server->setBehaviour(
        QStringLiteral("A"), ImageServer::Behaviour::of(ImageServer::Behaviour::Hang));
    m_server->setBehaviour(QStringLiteral("B"), png(Qt::blue));
    QQuickWindow window;
    const QScopedPointer<QQuickItem> page(createPage());
    m_loader->setWanted(urlOf(QStringLiteral("A")));
    whenAskedFor("A", [&] {
        loaderOf(page.data())->setWanted(urlOf(QStringLiteral("B")));
        QTimer::singleShot(SlowMs, page.data(), [&] { page->setParentItem(window.contentItem()); });
    });
    bool hadToBeEnded = false; // or this function would never go on
    QTimer::singleShot(2 * VerySlowMs, m_loader, [&] {
        hadToBeEnded = requestsFor("B") == 0;
        m_provider->abandonFetches();
    });
    QTRY_COMPARE(loaderOf(page.data())->source(), urlOf(QStringLiteral("B")));
    QVERIFY(!hadToBeEnded);
}

void TestCoverArtLoader::everyLoaderThatWaitsIsServed()
{
    for (const char *key : { "A", "B", "C" })
        m_server->setBehaviour(QString::fromLatin1(key), png(Qt::red, SlowMs));
    CoverArtLoader *const second = create();
    CoverArtLoader *const third = create();
    m_loader->setWanted(urlOf(QStringLiteral("A")));
    second->setWanted(urlOf(QStringLiteral("B")));
    third->setWanted(urlOf(QStringLiteral("C")));
    QTRY_COMPARE(m_loader->source(), urlOf(QStringLiteral("A")));
    QTRY_COMPARE(second->source(), urlOf(QStringLiteral("B")));
    QTRY_COMPARE(third->source(), urlOf(QStringLiteral("C")));
}

void TestCoverArtLoader::loaderThatWaitsIsServedBeforeAFurtherWish()
{
    for (const char *key : { "A", "B", "C" })
        m_server->setBehaviour(QString::fromLatin1(key), png(Qt::red, SlowMs));
    CoverArtLoader *const second = create();
    m_loader->setWanted(urlOf(QStringLiteral("A")));
    whenAskedFor("A", [&] {
        second->setWanted(urlOf(QStringLiteral("B")));
        QTimer::singleShot(
            1, m_loader, [this] { m_loader->setWanted(urlOf(QStringLiteral("C"))); });
    });
    QTRY_COMPARE(second->source(), urlOf(QStringLiteral("B")));
    QTRY_COMPARE(m_loader->source(), urlOf(QStringLiteral("C")));
}

void TestCoverArtLoader::destroyedLoaderThatWaitsIsForgotten()
{
    m_server->setBehaviour(QStringLiteral("A"), png(Qt::red, SlowMs));
    CoverArtLoader *const second = create();
    m_loader->setWanted(urlOf(QStringLiteral("A")));
    whenAskedFor("A", [second] {
        second->setWanted(urlOf(QStringLiteral("B")));
        QTimer::singleShot(1, QCoreApplication::instance(), [second] { delete second; });
    });
    QTRY_COMPARE(m_loader->source(), urlOf(QStringLiteral("A")));
    QCoreApplication::processEvents();
    QCOMPARE(requestsFor("B"), 0);
}

void TestCoverArtLoader::quitEndsAHangingFetch()
{
    m_server->setBehaviour(
        QStringLiteral("A"), ImageServer::Behaviour::of(ImageServer::Behaviour::Hang));
    LogCapture log;
    m_loader->setWanted(urlOf(QStringLiteral("A")));
    whenAskedFor("A", [] { QCoreApplication::quit(); });
    QCOMPARE(QCoreApplication::exec(), 0);
    QCOMPARE(m_provider->depth, 0);
    QCOMPARE(requestsFor("A"), 1); // not asked for again
    QVERIFY(m_loader->source() != urlOf(QStringLiteral("A")));
    QCOMPARE(log.take().filter(QStringLiteral("critical")), QStringList());
}

void TestCoverArtLoader::manySkipsDoNotNest()
{
    constexpr int Skips = 200; // faster than the server can answer
    for (int track = 0; track < Skips; ++track)
        m_server->setBehaviour(QString::number(track), png(Qt::red, 20));
    int track = 0;
    QTimer skip;
    connect(&skip, &QTimer::timeout, this, [&] {
        if (track < Skips)
            m_loader->setWanted(urlOf(QString::number(track++)));
    });
    skip.start(3);
    QTRY_COMPARE_WITH_TIMEOUT(m_loader->source(), urlOf(QString::number(Skips - 1)), 20000);
    QCOMPARE(m_provider->deepest, 1);
    QVERIFY(m_server->requests().size() < Skips);
    // Every fetch began at about the same depth of the stack.
    QCOMPARE(m_provider->highestFrame - m_provider->lowestFrame < 4096, true);
}

void TestCoverArtLoader::randomWishesEndWithTheLast()
{
    const quint32 seed = QRandomGenerator::system()->generate();
    qInfo("seed %u", seed);
    QRandomGenerator random(seed);
    const QStringList keys { "good", "slow", "hang", "drop", "trouble", "garbage", "NO_IMAGE" };
    m_server->setBehaviour(QStringLiteral("last"), png(Qt::blue));
    m_server->setBehaviour(QStringLiteral("good"), png(Qt::red));
    m_server->setBehaviour(QStringLiteral("slow"), png(Qt::green, 50));
    m_server->setBehaviour(
        QStringLiteral("hang"), ImageServer::Behaviour::of(ImageServer::Behaviour::Hang));
    m_server->setBehaviour(
        QStringLiteral("drop"), ImageServer::Behaviour::of(ImageServer::Behaviour::Drop));
    m_server->setBehaviour(
        QStringLiteral("trouble"), ImageServer::Behaviour::of(ImageServer::Behaviour::Trouble));
    m_server->setBehaviour(
        QStringLiteral("garbage"), ImageServer::Behaviour::of(ImageServer::Behaviour::Garbage));
    LogCapture log;
    int wishesLeft = 100;
    QTimer wish;
    connect(&wish, &QTimer::timeout, this, [&] {
        if (random.bounded(10) == 0) { // the page is left and entered again
            delete m_loader;
            m_loader = create();
        }
        m_loader->setWanted(urlOf(keys.at(random.bounded(keys.size()))));
        wish.setInterval(random.bounded(20));
        if (--wishesLeft == 0) {
            wish.stop();
            m_loader->setWanted(urlOf(QStringLiteral("last")));
        }
    });
    wish.start(0);
    QTRY_COMPARE_WITH_TIMEOUT(m_loader->source(), urlOf(QStringLiteral("last")), 30000);
    QTRY_COMPARE(m_provider->depth, 0);
    log.clear(); // failed fetches are part of it
}

QTEST_MAIN(TestCoverArtLoader)
#include "tst_coverartloader.moc"
