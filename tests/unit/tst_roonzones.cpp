// SPDX-License-Identifier: GPL-3.0-or-later
#include "roonzones.h"

#include "propertyclasstest.h"

#include <QPointer>
#include <QSignalSpy>
#include <QTest>

#include <memory>

class TestRoonZones : public PropertyClassTest {
    Q_OBJECT

    std::unique_ptr<QObject> make() const override { return std::make_unique<RoonZones>(); }
    QList<PropertyRow> rows() const override
    {
        return { { "QVariant zones read zonesChanged()", QStringList() } };
    }
    QStringList methodEntries() const override { return { "public signal zonesChanged()" }; }

private slots:
    void init();
    void cleanup();

    void instanceIsOneObject() { checkInstance<RoonZones>(); }
    void startsEmpty();

    void addTakesTheZone();
    void addRejectsAKnownId();
    void collectionDestroysItsZones();
    void emptyIdFindsNothing();

    void namesAreSortedWithoutRegardToCase();
    void availableListIsReplaced();
    void laterElementOfTheSameNameCounts();
    void elementsAreLogged();
    void oddListCountsAsEmpty_data();
    void oddListCountsAsEmpty();
    void staleZonesAreDestroyedAtOnce();
    void staleZoneIsJudgedByTheIdItWasAddedUnder();
    void unchangedListNotifies();
    void listIsCompleteWhenNotified();
    void availableZoneGetsNoObject();

    void findsTheZone_data();
    void findsTheZone();
    void followerNeedsAnAvailableZone();
    void followerIsFoundUnderTheIdItWasAddedUnder();
    void leaderComesBeforeFollower();
    void exactNameComesFirst();
    void elementWithoutIdFindsNothing();
    void whatWasFoundIsForgottenWithItsReason();

private:
    void add(const QString &id, const QByteArray &outputs = "[]");

    std::unique_ptr<RoonZones> m_zones;
};

void TestRoonZones::init()
{
    PropertyClassTest::init();
    m_zones.reset(new RoonZones);
    m_log->clear();
}

void TestRoonZones::cleanup()
{
    m_zones.reset();
    PropertyClassTest::cleanup();
}

void TestRoonZones::add(const QString &id, const QByteArray &outputs)
{
    auto *zone = new RoonZone(id);
    zone->setOutputs(outputs);
    QVERIFY(m_zones->add(zone));
    m_log->clear();
}

void TestRoonZones::startsEmpty()
{
    QCOMPARE(m_zones->zones().userType(), static_cast<int>(QMetaType::QStringList));
    QCOMPARE(m_zones->zones().toStringList(), QStringList());
    QVERIFY(!m_zones->contains(QStringLiteral("1601")));
    QVERIFY(!m_zones->find(QStringLiteral("1601")));
    QCOMPARE(m_zones->findZoneByDisplayName(QStringLiteral("Kitchen")), QString());
    QCOMPARE(m_zones->findZoneByDisplayName(QString()), QString());
    QCOMPARE(m_log->take(), QStringList());
}

void TestRoonZones::addTakesTheZone()
{
    QSignalSpy changed(m_zones.get(), &RoonZones::zonesChanged);
    auto *zone = new RoonZone(QStringLiteral("1601"));
    m_log->clear();
    QVERIFY(m_zones->add(zone));
    QCOMPARE(m_log->take(), QStringList({ "info: RoonZones::add() inserting zone 1601" }));
    QVERIFY(m_zones->contains(QStringLiteral("1601")));
    QCOMPARE(m_zones->find(QStringLiteral("1601")), zone);
    QCOMPARE(changed.count(), 0);
    QCOMPARE(m_zones->zones().toStringList(), QStringList()); // known, but not available
}

void TestRoonZones::addRejectsAKnownId()
{
    auto *first = new RoonZone(QStringLiteral("1601"));
    QVERIFY(m_zones->add(first));
    QSignalSpy changed(m_zones.get(), &RoonZones::zonesChanged);
    QPointer<RoonZone> second = new RoonZone(QStringLiteral("1601"));
    m_log->clear();
    QVERIFY(!m_zones->add(second));
    QVERIFY(!m_zones->add(first));
    QCOMPARE(m_log->take(), QStringList());
    QCOMPARE(changed.count(), 0);
    QCOMPARE(m_zones->find(QStringLiteral("1601")), first);
    m_zones.reset();
    QVERIFY(second); // still the caller's
    delete second;
}

void TestRoonZones::collectionDestroysItsZones()
{
    QPointer<RoonZone> zone = new RoonZone(QStringLiteral("1601"));
    QVERIFY(m_zones->add(zone));
    m_zones.reset();
    QVERIFY(!zone);
}

void TestRoonZones::emptyIdFindsNothing()
{
    add(QStringLiteral("1601"));
    QVERIFY(!m_zones->contains(QString()));
    QVERIFY(!m_zones->find(QString()));
}

void TestRoonZones::namesAreSortedWithoutRegardToCase()
{
    m_zones->updateAvailableZones(R"([{"id":"3","name":"gamma"},{"id":"1","name":"alpha"},
        {"id":"0","name":""},{"id":"2","name":"Beta"},{"id":"9"}])");
    QCOMPARE(m_zones->property("zones").toStringList(), QStringList({ "alpha", "Beta", "gamma" }));
}

void TestRoonZones::availableListIsReplaced()
{
    m_zones->updateAvailableZones(R"([{"id":"1","name":"Kitchen"},{"id":"2","name":"Bath"}])");
    m_zones->updateAvailableZones(R"([{"id":"3","name":"Hall"}])");
    QCOMPARE(m_zones->zones().toStringList(), QStringList({ "Hall" }));
    QCOMPARE(m_zones->findZoneByDisplayName(QStringLiteral("Kitchen")), QString());
    QCOMPARE(m_zones->findZoneByDisplayName(QStringLiteral("Hall")), QStringLiteral("3"));
}

void TestRoonZones::laterElementOfTheSameNameCounts()
{
    m_zones->updateAvailableZones(R"([{"id":"1","name":"Bath"},{"id":"2","name":"Bath"}])");
    QCOMPARE(m_zones->zones().toStringList(), QStringList({ "Bath" }));
    QCOMPARE(m_zones->findZoneByDisplayName(QStringLiteral("Bath")), QStringLiteral("2"));
}

void TestRoonZones::elementsAreLogged()
{
    m_zones->updateAvailableZones(R"([{"id":"1601","name":"Kitchen"},{"name":"Bath"},7])");
    QCOMPARE(m_log->take(),
        QStringList({ "debug: RoonZones::updateAvailableZones() element 0 with data 1601",
            "debug: RoonZones::updateAvailableZones() element 1 with data ",
            "debug: RoonZones::updateAvailableZones() element 2 with data " }));
}

void TestRoonZones::oddListCountsAsEmpty_data()
{
    QTest::addColumn<QByteArray>("json");
    QTest::newRow("empty array") << QByteArray("[]");
    QTest::newRow("empty payload") << QByteArray();
    QTest::newRow("object") << QByteArray(R"({"id":"1601","name":"Kitchen"})");
    QTest::newRow("cut off") << QByteArray(R"([{"id":"1601","name":"Kitchen"})");
    QTest::newRow("no JSON") << QByteArray("Kitchen");
    QTest::newRow("binary") << QByteArray("\0\xff[", 3);
}

void TestRoonZones::oddListCountsAsEmpty()
{
    QFETCH(QByteArray, json);
    m_zones->updateAvailableZones(R"([{"id":"1601","name":"Kitchen"}])");
    add(QStringLiteral("1601"));
    QSignalSpy changed(m_zones.get(), &RoonZones::zonesChanged);
    m_zones->updateAvailableZones(json);
    QCOMPARE(m_log->take(),
        QStringList({ "info: RoonZones::updateAvailableZones() removing stale zone 1601" }));
    QCOMPARE(changed.count(), 1);
    QCOMPARE(m_zones->zones().toStringList(), QStringList());
    QVERIFY(!m_zones->contains(QStringLiteral("1601")));
    QCOMPARE(m_zones->findZoneByDisplayName(QStringLiteral("Kitchen")), QString());
}

void TestRoonZones::staleZonesAreDestroyedAtOnce()
{
    QPointer<RoonZone> kept = new RoonZone(QStringLiteral("1"));
    QPointer<RoonZone> stale = new RoonZone(QStringLiteral("2"));
    QVERIFY(m_zones->add(kept));
    QVERIFY(m_zones->add(stale));
    m_log->clear();
    m_zones->updateAvailableZones(R"([{"id":"1","name":"2"}])");
    QVERIFY(kept);
    QVERIFY(!stale);
    QVERIFY(!m_zones->contains(QStringLiteral("2")));
    QVERIFY(!m_zones->find(QStringLiteral("2")));
    QCOMPARE(m_log->take(),
        QStringList({ "debug: RoonZones::updateAvailableZones() element 0 with data 1",
            "info: RoonZones::updateAvailableZones() removing stale zone 2" }));
}

void TestRoonZones::staleZoneIsJudgedByTheIdItWasAddedUnder()
{
    add(QStringLiteral("1"));
    RoonZone *const zone = m_zones->find(QStringLiteral("1"));
    zone->setId(QStringLiteral("renamed"));
    QCOMPARE(m_zones->find(QStringLiteral("1")), zone);
    QVERIFY(!m_zones->contains(QStringLiteral("renamed")));
    m_zones->updateAvailableZones(R"([{"id":"1","name":"Kitchen"}])");
    QCOMPARE(m_zones->find(QStringLiteral("1")), zone);
    m_zones->updateAvailableZones(R"([{"id":"renamed","name":"Kitchen"}])");
    QVERIFY(!m_zones->contains(QStringLiteral("1")));
}

void TestRoonZones::unchangedListNotifies()
{
    QSignalSpy changed(m_zones.get(), &RoonZones::zonesChanged);
    m_zones->updateAvailableZones("[]");
    m_zones->updateAvailableZones("[]");
    QCOMPARE(changed.count(), 2);
}

void TestRoonZones::listIsCompleteWhenNotified()
{
    add(QStringLiteral("stale"));
    QStringList names;
    bool staleKnown = true;
    connect(m_zones.get(), &RoonZones::zonesChanged, this, [&] {
        names = m_zones->zones().toStringList();
        staleKnown = m_zones->contains(QStringLiteral("stale"));
    });
    m_zones->updateAvailableZones(R"([{"id":"1","name":"Kitchen"}])");
    QCOMPARE(names, QStringList({ "Kitchen" }));
    QVERIFY(!staleKnown);
}

void TestRoonZones::availableZoneGetsNoObject()
{
    m_zones->updateAvailableZones(R"([{"id":"1601","name":"Kitchen"}])");
    QVERIFY(!m_zones->contains(QStringLiteral("1601")));
    QVERIFY(!m_zones->find(QStringLiteral("1601")));
    QCOMPARE(m_zones->findZoneByDisplayName(QStringLiteral("Kitchen")), QStringLiteral("1601"));
}

void TestRoonZones::findsTheZone_data()
{
    // Known: zone "g", which is in every list, with the outputs Kitchen, Bath and Küche.
    QTest::addColumn<QString>("available");
    QTest::addColumn<QString>("displayName");
    QTest::addColumn<QString>("role");
    const QString kitchenBath = QStringLiteral("Kitchen + Bath");
    QTest::newRow("exact name") << "Kitchen"
                                << "Kitchen"
                                << "exact";
    QTest::newRow("exact name of a group") << kitchenBath << kitchenBath << "exact";
    QTest::newRow("leader") << kitchenBath << "Kitchen"
                            << "leader";
    QTest::newRow("in the middle") << "Bath + Kitchen + Hall"
                                   << "Kitchen"
                                   << "leader";
    QTest::newRow("end of another name") << "Big Kitchen + Bath"
                                         << "Kitchen"
                                         << "leader";
    QTest::newRow("two members of three") << "Hall + Attic + Bath"
                                          << "Hall + Attic"
                                          << "leader";
    QTest::newRow("empty name in a group") << kitchenBath << ""
                                           << "leader";
    QTest::newRow("last member, listed as output") << kitchenBath << "Bath"
                                                   << "follower";
    QTest::newRow("output only") << "Everything"
                                 << "Küche"
                                 << "follower";
    QTest::newRow("last member, not an output") << "Kitchen + Hall"
                                                << "Hall"
                                                << "none";
    QTest::newRow("other case") << "Hall + Bath"
                                << "hall"
                                << "none";
    QTest::newRow("output in other case") << "Hall + Bath"
                                          << "bath"
                                          << "none";
    QTest::newRow("part of an output") << "Everything"
                                       << "Bat"
                                       << "none";
    QTest::newRow("plus without blanks") << "Hall+Bath"
                                         << "Hall"
                                         << "none";
    QTest::newRow("unknown") << kitchenBath << "Attic"
                             << "none";
    QTest::newRow("empty name, no group") << "Hall"
                                          << ""
                                          << "none";
}

void TestRoonZones::findsTheZone()
{
    QFETCH(QString, available);
    QFETCH(QString, displayName);
    QFETCH(QString, role);
    add(QStringLiteral("g"),
        R"([{"display_name":"Kitchen"},{"display_name":"Bath"},{"display_name":"Küche"}])");
    m_zones->updateAvailableZones(
        QStringLiteral(R"([{"id":"g","name":"%1"}])").arg(available).toUtf8());
    m_log->clear();

    QCOMPARE(m_zones->findZoneByDisplayName(displayName),
        role == QLatin1String("none") ? QString() : QStringLiteral("g"));
    QStringList expected;
    if (role == QLatin1String("leader"))
        expected.append(
            "info: RoonZones::findZoneByDisplayName() we're leader in a GROUPED zone: g");
    if (role == QLatin1String("follower"))
        expected.append(
            "info: RoonZones::findZoneByDisplayName() we're follower in a GROUPED zone: g");
    QCOMPARE(m_log->take(), expected);
}

void TestRoonZones::followerNeedsAnAvailableZone()
{
    m_zones->updateAvailableZones(R"([{"id":"1","name":"Hall"}])");
    add(QStringLiteral("2"), R"([{"display_name":"Bath"}])");
    QCOMPARE(m_zones->findZoneByDisplayName(QStringLiteral("Bath")), QString());
    QCOMPARE(m_log->take(), QStringList());
}

void TestRoonZones::followerIsFoundUnderTheIdItWasAddedUnder()
{
    m_zones->updateAvailableZones(R"([{"id":"1","name":"Hall"}])");
    add(QStringLiteral("1"), R"([{"display_name":"Bath"}])");
    m_zones->find(QStringLiteral("1"))->setId(QStringLiteral("renamed"));
    QCOMPARE(m_zones->findZoneByDisplayName(QStringLiteral("Bath")), QStringLiteral("1"));
}

void TestRoonZones::leaderComesBeforeFollower()
{
    m_zones->updateAvailableZones(
        R"([{"id":"1","name":"Bath + Hall"},{"id":"2","name":"Attic + Bath"}])");
    add(QStringLiteral("2"), R"([{"display_name":"Attic"},{"display_name":"Bath"}])");
    QCOMPARE(m_zones->findZoneByDisplayName(QStringLiteral("Bath")), QStringLiteral("1"));
}

void TestRoonZones::exactNameComesFirst()
{
    m_zones->updateAvailableZones(
        R"([{"id":"1","name":"Kitchen + Bath"},{"id":"2","name":"Kitchen"}])");
    add(QStringLiteral("1"), R"([{"display_name":"Kitchen"},{"display_name":"Bath"}])");
    QCOMPARE(m_zones->findZoneByDisplayName(QStringLiteral("Kitchen")), QStringLiteral("2"));
    QCOMPARE(m_log->take(), QStringList());
}

void TestRoonZones::elementWithoutIdFindsNothing()
{
    m_zones->updateAvailableZones(R"([{"name":"Kitchen"}])");
    QCOMPARE(m_zones->zones().toStringList(), QStringList({ "Kitchen" }));
    const QString id = m_zones->findZoneByDisplayName(QStringLiteral("Kitchen"));
    QCOMPARE(id, QString());
    QVERIFY(!m_zones->find(id));
}

void TestRoonZones::whatWasFoundIsForgottenWithItsReason()
{
    const QByteArray kitchenAndBath = R"([{"display_name":"Kitchen"},{"display_name":"Bath"}])";
    const auto found = [this] { return m_zones->idByDisplayName(QStringLiteral("Bath")); };
    m_zones->updateAvailableZones(R"([{"id":"g","name":"Kitchen + Bath"}])");
    QCOMPARE(found(), QString());
    add(QStringLiteral("g"), kitchenAndBath);
    QCOMPARE(found(), QStringLiteral("g"));
    m_zones->find(QStringLiteral("g"))->setOutputs("[]");
    QCOMPARE(found(), QString());
    m_zones->find(QStringLiteral("g"))->setOutputs(kitchenAndBath);
    QCOMPARE(found(), QStringLiteral("g"));
    m_zones->updateAvailableZones(R"([{"id":"h","name":"Bath + Hall"}])");
    QCOMPARE(found(), QStringLiteral("h"));
    m_zones->updateAvailableZones("[]");
    QCOMPARE(found(), QString());
    // More names than are kept.
    m_zones->updateAvailableZones(R"([{"id":"g","name":"Kitchen + Bath"}])");
    for (int i = 0; i < 100; ++i)
        QCOMPARE(m_zones->idByDisplayName(QString::number(i)), QString());
    QCOMPARE(m_zones->idByDisplayName(QStringLiteral("Kitchen")), QStringLiteral("g"));
}

QTEST_GUILESS_MAIN(TestRoonZones)
#include "tst_roonzones.moc"
