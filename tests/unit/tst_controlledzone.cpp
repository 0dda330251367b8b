// SPDX-License-Identifier: GPL-3.0-or-later
#include "controlledzone.h"
#include "playertest.h"
#include "roonzones.h"

#include <QSignalSpy>
#include <QTest>

class TestControlledZone : public PlayerTest {
    Q_OBJECT

private slots:
    void isTheZoneOfTheCommands();
    void anotherIdOfTheSameNameIsNoticed();
    void aGroupAroundTheZoneIsNoticed();
    void aChosenZoneIsNoticed();
    void outputsThatMakeTheZoneAFollowerAreNoticed();
    void anotherNameOfTheSameZoneIsNone();
    void otherNewsAreNone();
    void lookingWritesNothing();
    void isNotShownBeforeItWasCopied();
    void isNotShownWhileAnotherIs();
    void isNotShownWithoutAZone();
    void isNotShownWhenItCameBackSilent();
    void isWholeBeforeItSpeaks();

private:
    /** A zone object with a volume, as messages of the zone would make it. */
    static RoonZone *add(const QString &id, const QString &name);
    /** Two zones with a volume; the player shows the controlled one. */
    void showKitchenBesideBath();
    static void available(const QByteArray &json)
    {
        RoonZones::instance()->updateAvailableZones(json);
    }
};

RoonZone *TestControlledZone::add(const QString &id, const QString &name)
{
    auto *const zone = new RoonZone(id);
    zone->setName(name);
    zone->setVolumeAvailable(true);
    RoonZones::instance()->add(zone);
    return zone;
}

void TestControlledZone::showKitchenBesideBath()
{
    available(R"([{"id":"z1","name":"Kitchen"},{"id":"z2","name":"Bath"}])");
    m_zone->setVolumeAvailable(true);
    add(QStringLiteral("z2"), QStringLiteral("Bath"));
    m_player->update();
}

void TestControlledZone::isTheZoneOfTheCommands()
{
    const ControlledZone zone(m_player.get(), RoonZones::instance());
    QCOMPARE(zone.zoneId(), QStringLiteral("z1"));
    available("[]");
    QCOMPARE(zone.zoneId(), QString());
    QCOMPARE(ControlledZone(m_player.get(), RoonZones::instance()).zoneId(), QString());
}

void TestControlledZone::anotherIdOfTheSameNameIsNoticed()
{
    const ControlledZone zone(m_player.get(), RoonZones::instance());
    QSignalSpy changed(&zone, &ControlledZone::zoneIdChanged);
    available(R"([{"id":"z9","name":"Kitchen"}])");
    QCOMPARE(zone.zoneId(), QStringLiteral("z9"));
    QCOMPARE(changed.count(), 1);
}

void TestControlledZone::aGroupAroundTheZoneIsNoticed()
{
    const ControlledZone zone(m_player.get(), RoonZones::instance());
    QSignalSpy changed(&zone, &ControlledZone::zoneIdChanged);
    available(R"([{"id":"g1","name":"Kitchen + Bath"},{"id":"z2","name":"Hall"}])");
    QCOMPARE(zone.zoneId(), QStringLiteral("g1"));
    QCOMPARE(changed.count(), 1);
}

void TestControlledZone::aChosenZoneIsNoticed()
{
    showKitchenBesideBath();
    const ControlledZone zone(m_player.get(), RoonZones::instance());
    QSignalSpy changed(&zone, &ControlledZone::zoneIdChanged);
    m_player->selectZone(QStringLiteral("Bath"));
    QCOMPARE(zone.zoneId(), QStringLiteral("z2"));
    QCOMPARE(changed.count(), 1);
    m_player->selectZone(QStringLiteral("Attic"));
    QCOMPARE(zone.zoneId(), QString());
    m_player->setWantedZone(QStringLiteral("Kitchen"));
    QCOMPARE(zone.zoneId(), QStringLiteral("z1"));
    QCOMPARE(changed.count(), 3);
}

void TestControlledZone::outputsThatMakeTheZoneAFollowerAreNoticed()
{
    // The name on view stays what it was, and no list comes.
    RoonZone *const group = add(QStringLiteral("g1"), QStringLiteral("Bath + Kitchen"));
    available(R"([{"id":"g1","name":"Bath + Kitchen"}])");
    m_player->setZone(QStringLiteral("Bath + Kitchen"));
    const ControlledZone zone(m_player.get(), RoonZones::instance());
    QSignalSpy changed(&zone, &ControlledZone::zoneIdChanged);
    QCOMPARE(zone.zoneId(), QString());
    group->setOutputs(R"([{"display_name":"Bath"},{"display_name":"Kitchen"}])");
    m_player->update();
    QCOMPARE(zone.zoneId(), QStringLiteral("g1"));
    QCOMPARE(changed.count(), 1);
}

void TestControlledZone::anotherNameOfTheSameZoneIsNone()
{
    available(R"([{"id":"g1","name":"Kitchen + Bath + Hall"}])");
    add(QStringLiteral("g1"), QStringLiteral("Kitchen + Bath + Hall"));
    const ControlledZone zone(m_player.get(), RoonZones::instance());
    QSignalSpy changed(&zone, &ControlledZone::zoneIdChanged);
    m_player->selectZone(QStringLiteral("Bath"));
    available(R"([{"id":"g1","name":"Bath"}])");
    m_player->update();
    QCOMPARE(zone.zoneId(), QStringLiteral("g1"));
    QCOMPARE(changed.count(), 0);
}

void TestControlledZone::otherNewsAreNone()
{
    m_zone->setVolumeAvailable(true);
    const ControlledZone zone(m_player.get(), RoonZones::instance());
    QSignalSpy changed(&zone, &ControlledZone::zoneIdChanged);
    available(R"([{"id":"z3","name":"Hall"},{"id":"z1","name":"Kitchen"}])");
    m_zone->setVolumeValue(20);
    m_player->update();
    QCOMPARE(changed.count(), 0);
}

void TestControlledZone::lookingWritesNothing()
{
    available(R"([{"id":"g1","name":"Kitchen + Bath"}])");
    m_log->clear();
    const ControlledZone zone(m_player.get(), RoonZones::instance());
    emit RoonZones::instance()->zonesChanged();
    QCOMPARE(zone.zoneId(), QStringLiteral("g1"));
    QCOMPARE(m_log->take(), QStringList());
}

void TestControlledZone::isNotShownBeforeItWasCopied()
{
    m_zone->setVolumeAvailable(true);
    const ControlledZone zone(m_player.get(), RoonZones::instance());
    QSignalSpy changed(&zone, &ControlledZone::shownChanged);
    QVERIFY(!zone.isShown());
    m_player->update();
    QVERIFY(zone.isShown());
    m_player->update();
    QCOMPARE(changed.count(), 1);
    QVERIFY(ControlledZone(m_player.get(), RoonZones::instance()).isShown());
}

void TestControlledZone::isNotShownWhileAnotherIs()
{
    showKitchenBesideBath();
    const ControlledZone zone(m_player.get(), RoonZones::instance());
    QSignalSpy changed(&zone, &ControlledZone::shownChanged);
    available(R"([{"id":"z2","name":"Kitchen"}])");
    QVERIFY(!zone.isShown());
    QCOMPARE(changed.count(), 1);
    m_player->update();
    QVERIFY(zone.isShown());
    QCOMPARE(changed.count(), 2);
    // A zone that is known is copied when it is chosen, before anybody hears of the choice.
    available(R"([{"id":"z2","name":"Kitchen"},{"id":"z3","name":"Hall"}])");
    add(QStringLiteral("z3"), QStringLiteral("Hall"));
    m_player->selectZone(QStringLiteral("Hall"));
    QCOMPARE(zone.zoneId(), QStringLiteral("z3"));
    QVERIFY(zone.isShown());
    QCOMPARE(changed.count(), 2);
}

void TestControlledZone::isNotShownWithoutAZone()
{
    const ControlledZone none(m_player.get(), RoonZones::instance());
    available("[]");
    QCOMPARE(none.zoneId(), QString());
    QVERIFY(!none.isShown());
    available(R"([{"id":"z1","name":"Kitchen"}])");
    add(QStringLiteral("z1"), QStringLiteral("Kitchen"));
    m_player->update();
    QVERIFY(none.isShown());
    available("[]");
    QVERIFY(!none.isShown());
}

void TestControlledZone::isNotShownWhenItCameBackSilent()
{
    m_zone->setVolumeAvailable(true);
    m_player->update();
    const ControlledZone zone(m_player.get(), RoonZones::instance());
    available("[]");
    available(R"([{"id":"z1","name":"Kitchen"}])");
    QCOMPARE(zone.zoneId(), QStringLiteral("z1"));
    QVERIFY(!zone.isShown());
    m_player->update();
    QVERIFY(!zone.isShown());
    add(QStringLiteral("z1"), QStringLiteral("Kitchen"));
    m_player->update();
    QVERIFY(zone.isShown());
}

void TestControlledZone::isWholeBeforeItSpeaks()
{
    m_zone->setVolumeAvailable(true);
    m_player->update();
    ControlledZone zone(m_player.get(), RoonZones::instance());
    int heard = 0;
    connect(&zone, &ControlledZone::zoneIdChanged, &zone, [&] {
        ++heard;
        QVERIFY(!zone.isShown());
    });
    connect(&zone, &ControlledZone::shownChanged, &zone, [&] {
        ++heard;
        QCOMPARE(zone.zoneId(), QStringLiteral("z2"));
    });
    available(R"([{"id":"z2","name":"Kitchen"}])");
    QCOMPARE(heard, 2);
}

QTEST_GUILESS_MAIN(TestControlledZone)
#include "tst_controlledzone.moc"
