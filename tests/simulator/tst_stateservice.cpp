// SPDX-License-Identifier: GPL-3.0-or-later
#include "simulator/services/stateservice.h"

#include "simulator/services/topics.h"

#include <QHash>
#include <QTest>

/** What subscribers would know: the last payload of every topic. */
class TestStateService : public QObject {
    Q_OBJECT

private slots:
    void publishesStateAndSettingsRetained();
    void updateGoesThroughItsStages();
    void updateIsRefusedWithoutAnyOffer();
    void updateIsRefusedWhileHeldBack();
    void nothingBeforeTheStart();
};

void TestStateService::publishesStateAndSettingsRetained()
{
    StateService service(1);
    QHash<QString, QByteArray> broker;
    connect(&service, &StateService::publish, this,
        [&broker](const QString &topic, const QByteArray &payload, bool retain) {
            QVERIFY(retain);
            broker[topic] = payload;
        });
    service.start();
    QCOMPARE(broker,
        (QHash<QString, QByteArray> {
            { Topics::state("Stage"), "true" },
            { Topics::state("Init"), "true" },
            { Topics::state("Installation"), "false" },
            { Topics::state("RequireConfigure"), "false" },
            { Topics::state("RequireReboot"), "false" },
            { Topics::state("ConfigureIsRunning"), "false" },
            { Topics::state("UpdateAvailable"), "false" },
            { Topics::state("UpdateInstalling"), "false" },
            { Topics::state("UpdateInhibited"), "false" },
            { Topics::state("WebIfaceIsUp"), "true" },
            { Topics::state("TimeSynced"), "true" },
            { Topics::state("UpdateInfo"), "" }, // also takes an earlier run's away
            { Topics::state("InhibitReason"), "" },
            { Topics::settings("touchscreen_blankscreen"), "false" },
            { Topics::settings("touchscreen_scrolling"), "true" },
            { Topics::settings("touchscreen_clock24"), "true" },
            { Topics::settings("touchscreen_clockcolor"), "grey" },
            { Topics::settings("touchscreen_custom_clockcolor"), "#c58f2c" },
            { Topics::settings("touchscreen_screensaver_time"), "10" },
            { Topics::settings("touchscreen_hide_power_button"), "false" },
            { Topics::settings("touchscreen_hide_option_buttons"), "false" },
            { Topics::settings("touchscreen_show_blur_image"), "true" },
        }));
}

void TestStateService::updateGoesThroughItsStages()
{
    StateService service(1000);
    QHash<QString, QByteArray> broker;
    QStringList changes;
    QStringList told;
    connect(&service, &StateService::publish, this,
        [&broker, &changes](const QString &topic, const QByteArray &payload) {
            broker[topic] = payload;
            changes.append(topic.section(QLatin1Char('/'), -1) + QLatin1Char('=')
                + QString::fromUtf8(payload));
        });
    connect(
        &service, &StateService::told, this, [&told](const QString &line) { told.append(line); });
    service.start();
    service.offerUpdate(QStringLiteral("2.0"));
    QCOMPARE(broker.value(Topics::state("UpdateAvailable")), QByteArray("true"));
    QCOMPARE(broker.value(Topics::state("UpdateInfo")), QByteArray("2.0"));
    QString reason;
    changes.clear();
    QVERIFY(service.installUpdate(&reason));
    QCOMPARE(broker.value(Topics::state("UpdateInstalling")), QByteArray("true"));
    QVERIFY(!service.installUpdate(&reason));
    QTRY_VERIFY(!service.isInstalling());
    QCOMPARE(told,
        QStringList({ QStringLiteral("update: installing"), QStringLiteral("update: rebooting"),
            QStringLiteral("update: starting"), QStringLiteral("update: done") }));
    QCOMPARE(broker.value(Topics::state("UpdateInstalling")), QByteArray("false"));
    QCOMPARE(broker.value(Topics::state("UpdateAvailable")), QByteArray("false"));
    QCOMPARE(changes.join(QLatin1Char(' ')),
        QStringLiteral("Installation=true UpdateInstalling=true RequireReboot=true "
                       "WebIfaceIsUp=false Init=false RequireReboot=false UpdateInfo= "
                       "UpdateAvailable=false Init=true WebIfaceIsUp=true Installation=false "
                       "UpdateInstalling=false"));
    QCOMPARE(broker.value(Topics::state("WebIfaceIsUp")), QByteArray("true"));
}

void TestStateService::updateIsRefusedWithoutAnyOffer()
{
    StateService service(1);
    QString reason;
    QVERIFY(!service.installUpdate(&reason));
    QVERIFY(!reason.isEmpty());
    service.offerUpdate(QStringLiteral("2.0"));
    service.offerUpdate(QString());
    QVERIFY(!service.installUpdate(&reason));
    QVERIFY(!service.isInstalling());
}

void TestStateService::updateIsRefusedWhileHeldBack()
{
    StateService service(1);
    service.offerUpdate(QStringLiteral("2.0"));
    service.inhibitUpdates(QStringLiteral("a backup runs"));
    QString reason;
    QVERIFY(!service.installUpdate(&reason));
    QVERIFY(reason.contains(QLatin1String("a backup runs")));
    service.inhibitUpdates(QString());
    QVERIFY(service.installUpdate(&reason));
}

void TestStateService::nothingBeforeTheStart()
{
    StateService service(1);
    int published = 0;
    connect(&service, &StateService::publish, this, [&published] { ++published; });
    service.offerUpdate(QStringLiteral("2.0"));
    QCOMPARE(published, 0);
}

QTEST_GUILESS_MAIN(TestStateService)
#include "tst_stateservice.moc"
