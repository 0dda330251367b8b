// SPDX-License-Identifier: GPL-3.0-or-later
#include "propertyclasstest.h"
#include "velunor_state.h"

#include <QSignalSpy>
#include <QTest>

namespace {

/** What a change logs while UpdateAvailable reads @p available. */
QStringList linesWith(const char *available)
{
    return { "info: VelunorState::propertyChanged()",
        QStringLiteral("debug: VelunorState::propertyChanged() update_available: ")
            + QLatin1String(available) };
}

} // namespace

class TestVelunorState : public PropertyClassTest {
    Q_OBJECT

    std::unique_ptr<QObject> make() const override { return std::make_unique<VelunorState>(); }
    QList<PropertyRow> rows() const override;
    QStringList methodEntries() const override;

private slots:
    void instanceIsOneObject() { checkInstance<VelunorState>(); }
    void logTellsWhetherAnUpdateIsAvailable();
    void emptyInfoOnAFreshObjectIsNoChange();
    void propertyChangedOnlyLogs();
};

QList<PropertyRow> TestVelunorState::rows() const
{
    const QStringList lines = linesWith("false");
    return {
        PropertyRow("bool Stage read write stateVelunorStageChanged()", false).logging(lines),
        PropertyRow("bool Init read write stateVelunorInitChanged()", false).logging(lines),
        PropertyRow("bool Installation read write stateVelunorInstallationChanged()", false)
            .logging(lines),
        PropertyRow("bool RequireConfigure read write stateRequireConfigureChanged()", false)
            .logging(lines),
        PropertyRow("bool RequireReboot read write stateRequireRebootChanged()", false)
            .logging(lines),
        PropertyRow("bool ConfigureIsRunning read write stateConfigureIsRunningChanged()", false)
            .logging(lines),
        PropertyRow("bool UpdateAvailable read write stateUpdateAvailableChanged()", false)
            .logging(linesWith("%1")),
        PropertyRow("bool UpdateInstalling read write stateUpdateInstallingChanged()", false)
            .logging(lines),
        { "bool UpdateInhibited read write stateUpdateInhibitedChanged()", false },
        PropertyRow("bool WebIfaceIsUp read write stateWebIfaceIsUpChanged()", false)
            .logging(lines),
        PropertyRow("bool TimeSynced read write stateTimeSyncedChanged()", false).logging(lines),
        PropertyRow("QString UpdateInfo read write stateUpdateInfoChanged()", QString())
            .logging(lines),
        { "QString InhibitReason read write stateInhibitReasonChanged()", QString() },
    };
}

QStringList TestVelunorState::methodEntries() const
{
    return { "public signal stateVelunorStageChanged()", "public signal stateVelunorInitChanged()",
        "public signal stateVelunorInstallationChanged()",
        "public signal stateRequireConfigureChanged()", "public signal stateRequireRebootChanged()",
        "public signal stateConfigureIsRunningChanged()",
        "public signal stateUpdateAvailableChanged()",
        "public signal stateUpdateInstallingChanged()",
        "public signal stateUpdateInhibitedChanged()", "public signal stateWebIfaceIsUpChanged()",
        "public signal stateTimeSyncedChanged()", "public signal stateUpdateInfoChanged()",
        "public signal stateInhibitReasonChanged()", "private slot propertyChanged()" };
}

void TestVelunorState::logTellsWhetherAnUpdateIsAvailable()
{
    VelunorState state;
    QVERIFY(state.setProperty("UpdateAvailable", true));
    m_log->clear();
    QVERIFY(state.setProperty("Stage", true));
    QCOMPARE(m_log->take(),
        QStringList({ "info: VelunorState::propertyChanged()",
            "debug: VelunorState::propertyChanged() update_available: true" }));
}

void TestVelunorState::emptyInfoOnAFreshObjectIsNoChange()
{
    VelunorState state;
    QSignalSpy changed(&state, &VelunorState::stateUpdateInfoChanged);
    QVERIFY(state.setProperty("UpdateInfo", QStringLiteral("")));
    QVERIFY(state.setProperty("UpdateInfo", QString()));
    QCOMPARE(changed.count(), 0);
}

void TestVelunorState::propertyChangedOnlyLogs()
{
    VelunorState state;
    m_log->clear();
    QVERIFY(QMetaObject::invokeMethod(&state, "propertyChanged", Qt::DirectConnection));
    QCOMPARE(m_log->take(),
        QStringList({ "info: VelunorState::propertyChanged()",
            "debug: VelunorState::propertyChanged() update_available: false" }));
    QCOMPARE(state.property("UpdateAvailable"), QVariant(false));
}

QTEST_GUILESS_MAIN(TestVelunorState)
#include "tst_velunor_state.moc"
