// SPDX-License-Identifier: GPL-3.0-or-later
#include "logcapture.h"
#include "mqtt.h"
#include "player.h"
#include "playertest.h"
#include "roonzones.h"
#include "signalrecorder.h"

#include <QTest>

#include <cmath>
#include <limits>

namespace {

const QString SetLine = QStringLiteral("info: Player::setVolume() ");
const QString SkippedLine = QStringLiteral("debug: Player::setVolume() SKIPPED: ");
const QString VolumeLine
    = QStringLiteral("debug: Player::updateFromZones() volume available for zone: Kitchen");

/** What update() always notifies while there is a volume. */
const QStringList RangeSignals { "minVolumeChanged", "maxVolumeChanged", "limitMinVolumeChanged",
    "limitMaxVolumeChanged", "limitSoftVolumeChanged", "volumeStepChanged" };

} // namespace

class TestPlayerVolume : public PlayerTest {
    Q_OBJECT

private slots:
    void init();

    void smallChangesOfTheVolumeAreSkipped_data();
    void smallChangesOfTheVolumeAreSkipped();
    void skippedChangesDoNotAddUp();
    void writtenVolumeFollowsTheSameRule();
    void stepDecidesThePrecision_data();
    void stepDecidesThePrecision();
    void repeatedStepNotifiesButLogsNothing();
    void mutedIsAFlagBehindANumber_data();
    void mutedIsAFlagBehindANumber();
    void rangeIsNotifiedOnEveryUpdate();
    void volumeThatGoesAwayKeepsItsNumbers();
    void zoneWithoutVolumeChangesNoNumber();
};

void TestPlayerVolume::init()
{
    PlayerTest::init();
    m_player->update();
    m_signals->take();
    m_log->clear();
}

void TestPlayerVolume::smallChangesOfTheVolumeAreSkipped_data()
{
    QTest::addColumn<float>("from");
    QTest::addColumn<float>("to");
    QTest::addColumn<bool>("taken");
    QTest::addColumn<QString>("text");
    QTest::newRow("same") << 50.0f << 50.0f << false << "50";
    QTest::newRow("0.05 up") << 50.0f << 50.05f << false << "50.05";
    QTest::newRow("0.2 up") << 50.0f << 50.2f << true << "50.2";
    QTest::newRow("0.2 down") << 50.0f << 49.8f << true << "49.8";
    QTest::newRow("0.05 down") << 50.0f << 49.95f << false << "49.95";
    QTest::newRow("exactly 0.1 from 0") << 0.0f << 0.1f << false << "0.1";
    QTest::newRow("exactly -0.1 from 0") << 0.0f << -0.1f << false << "-0.1";
    QTest::newRow("a little more than 0.1") << 0.0f << std::nextafter(0.1f, 1.0f) << true << "0.1";
    QTest::newRow("whole step") << -20.0f << -21.0f << true << "-21";
    QTest::newRow("one decimal") << 0.0f << -12.5f << true << "-12.5";
    QTest::newRow("no number") << 1.0f << std::numeric_limits<float>::quiet_NaN() << false << "nan";
    QTest::newRow("infinite") << 1.0f << std::numeric_limits<float>::infinity() << true << "inf";
}

void TestPlayerVolume::smallChangesOfTheVolumeAreSkipped()
{
    QFETCH(float, from);
    QFETCH(float, to);
    QFETCH(bool, taken);
    QFETCH(QString, text);
    m_player->setVolume(from);
    m_signals->take();
    m_log->clear();
    m_player->setVolume(to);
    QCOMPARE(lines(), QStringList((taken ? SetLine : SkippedLine) + text));
    QCOMPARE(m_signals->take(), taken ? QStringList("volumeChanged") : QStringList());
    QVERIFY(m_player->volume() == (taken ? to : from));
}

void TestPlayerVolume::skippedChangesDoNotAddUp()
{
    m_zone->setVolumeAvailable(true);
    for (const float value : { 50.0f, 50.05f, 50.09f, 50.2f }) {
        m_zone->setVolumeValue(value);
        m_player->update();
    }
    QCOMPARE(m_player->volume(), 50.2f);
    QCOMPARE(lines().filter(QStringLiteral("setVolume()")),
        QStringList(
            { SetLine + "50", SkippedLine + "50.05", SkippedLine + "50.09", SetLine + "50.2" }));
}

void TestPlayerVolume::writtenVolumeFollowsTheSameRule()
{
    QVERIFY(m_player->setProperty("volume", 0.1f));
    QCOMPARE(m_player->volume(), 0.0f);
    QVERIFY(m_player->setProperty("volume", 0.2f));
    QCOMPARE(m_player->volume(), 0.2f);
    QCOMPARE(m_signals->take(), QStringList("volumeChanged"));
}

void TestPlayerVolume::stepDecidesThePrecision_data()
{
    QTest::addColumn<float>("step");
    QTest::addColumn<uint>("precision");
    QTest::addColumn<QString>("text");
    QTest::newRow("half") << 0.5f << 1u << "0.5";
    QTest::newRow("tiny") << 0.001f << 1u << "0.001";
    QTest::newRow("just below one") << 0.99f << 1u << "0.99";
    QTest::newRow("one") << 1.0f << 0u << "1";
    QTest::newRow("above one") << 1.5f << 0u << "1.5";
    QTest::newRow("zero") << 0.0f << 0u << "0";
    QTest::newRow("negative") << -0.5f << 0u << "-0.5";
    QTest::newRow("no number") << std::numeric_limits<float>::quiet_NaN() << 0u << "nan";
}

void TestPlayerVolume::stepDecidesThePrecision()
{
    QFETCH(float, step);
    QFETCH(uint, precision);
    QFETCH(QString, text);
    for (const uint before : { 0u, 1u }) {
        m_player->setVolumeStep(before == 1 ? 0.25f : 2.0f);
        QCOMPARE(m_player->volumeDisplayPrecision(), before);
        m_signals->take();
        m_log->clear();
        m_player->setVolumeStep(step);
        QCOMPARE(m_player->volumeDisplayPrecision(), precision);
        QCOMPARE(m_player->property("volumeDisplayPrecision"), QVariant(precision));
        QCOMPARE(m_signals->take(), QStringList("volumeStepChanged"));
        QStringList expected;
        if (precision != before) {
            expected.append(
                QStringLiteral("%1: Player::setVolumeStep() changing precision to %2 based on: %3")
                    .arg(QLatin1String(precision == 1 ? "info" : "debug"))
                    .arg(precision)
                    .arg(text));
        }
        QCOMPARE(lines(), expected);
    }
}

void TestPlayerVolume::repeatedStepNotifiesButLogsNothing()
{
    m_player->setVolumeStep(0.5f);
    QCOMPARE(lines().size(), 1);
    m_player->setVolumeStep(0.5f);
    QVERIFY(m_player->setProperty("volumeStep", 0.5f)); // the scene's way
    QCOMPARE(lines(), QStringList());
    QCOMPARE(m_signals->take(),
        QStringList({ "volumeStepChanged", "volumeStepChanged", "volumeStepChanged" }));
    QCOMPARE(m_player->volumeStep(), 0.5f);
}

void TestPlayerVolume::mutedIsAFlagBehindANumber_data()
{
    QTest::addColumn<float>("written");
    QTest::addColumn<float>("read");
    QTest::newRow("0") << 0.0f << 0.0f;
    QTest::newRow("1") << 1.0f << 1.0f;
    QTest::newRow("half") << 0.5f << 1.0f;
    QTest::newRow("negative") << -3.0f << 1.0f;
}

void TestPlayerVolume::mutedIsAFlagBehindANumber()
{
    QFETCH(float, written);
    QFETCH(float, read);
    QVERIFY(m_player->setProperty("volumeMuted", written));
    QCOMPARE(m_player->property("volumeMuted"), QVariant(read));
    QCOMPARE(m_signals->take(), read > 0.0f ? QStringList("volumeMuteChanged") : QStringList());
    QVERIFY(m_player->setProperty("volumeMuted", read * 2.0f));
    QCOMPARE(m_signals->take(), QStringList());
}

void TestPlayerVolume::rangeIsNotifiedOnEveryUpdate()
{
    m_zone->setVolumeAvailable(true);
    m_zone->setVolumeIsMuted(true);
    m_player->update();
    QCOMPARE(m_signals->take(),
        RangeSignals + QStringList({ "volumeMuteChanged", "volumeAvailableChanged" }));
    lines();
    m_player->update();
    QCOMPARE(m_signals->take(), RangeSignals);
    QCOMPARE(lines().mid(1), QStringList({ VolumeLine, SkippedLine + "0" }));

    // All five are stored before the first of them is notified.
    m_zone->setVolumeMax(100.0f);
    m_zone->setVolumeSoftLimit(60.0f);
    float max = 0.0f;
    float soft = 0.0f;
    connect(m_player.get(), &Player::minVolumeChanged, this, [&] {
        max = m_player->maxVolume();
        soft = m_player->limitSoftVolume();
    });
    m_player->update();
    QCOMPARE(max, 100.0f);
    QCOMPARE(soft, 60.0f);
}

void TestPlayerVolume::volumeThatGoesAwayKeepsItsNumbers()
{
    m_zone->setVolumeAvailable(true);
    m_zone->setVolumeValue(33.0f);
    m_zone->setVolumeMin(1.0f);
    m_zone->setVolumeMax(99.0f);
    m_zone->setVolumeStep(0.5f);
    m_zone->setVolumeIsMuted(true);
    m_player->update();
    m_signals->take();
    lines();
    m_zone->setVolumeAvailable(false);
    m_zone->setVolumeValue(1.0f);
    m_zone->setVolumeIsMuted(false);
    m_player->update();
    QCOMPARE(m_signals->take(), QStringList("volumeAvailableChanged"));
    QCOMPARE(lines().size(), 1); // that it looks for the zone
    QVERIFY(!m_player->volumeAvailable());
    QCOMPARE(m_player->volume(), 33.0f);
    QCOMPARE(m_player->minVolume(), 1.0f);
    QCOMPARE(m_player->maxVolume(), 99.0f);
    QCOMPARE(m_player->volumeStep(), 0.5f);
    QCOMPARE(m_player->volumeMuted(), 1.0f);
    QCOMPARE(m_player->volumeDisplayPrecision(), 1u);
    m_player->update();
    QCOMPARE(m_signals->take(), QStringList());
}

void TestPlayerVolume::zoneWithoutVolumeChangesNoNumber()
{
    m_zone->setVolumeValue(33.0f);
    m_zone->setVolumeMax(99.0f);
    m_player->update();
    QCOMPARE(m_signals->take(), QStringList());
    QCOMPARE(m_player->volume(), 0.0f);
    QCOMPARE(m_player->maxVolume(), 0.0f);
}

QTEST_GUILESS_MAIN(TestPlayerVolume)
#include "tst_player_volume.moc"
