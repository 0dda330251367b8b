// SPDX-License-Identifier: GPL-3.0-or-later
#include "logcapture.h"
#include "metatable.h"
#include "samplevalue.h"
#include "velunor_state.h"

#include <QSignalSpy>
#include <QTest>

class TestVelunorState : public QObject {
    Q_OBJECT

private slots:
    void init() { m_log.reset(new LogCapture); }
    void cleanup() { m_log.reset(); }

    void metaObjectIsTheInterface();
    void constructorLogsItsLine();
    void startsFalseAndEmpty();
    void notifiesOnlyOnChange_data();
    void notifiesOnlyOnChange();
    void signalComesAfterTheValueIsStored();
    void logTellsWhetherAnUpdateIsAvailable();
    void emptyInfoOnAFreshObjectIsNoChange();
    void propertyChangedOnlyLogs();
    void instanceIsOneObject();

private:
    QScopedPointer<LogCapture> m_log;
};

void TestVelunorState::metaObjectIsTheInterface()
{
    const QMetaObject &meta = VelunorState::staticMetaObject;
    QCOMPARE(meta.superClass(), &QObject::staticMetaObject);
    QCOMPARE(propertyTable(meta),
        QStringList({ "bool Stage read write stateVelunorStageChanged()",
            "bool Init read write stateVelunorInitChanged()",
            "bool Installation read write stateVelunorInstallationChanged()",
            "bool RequireConfigure read write stateRequireConfigureChanged()",
            "bool RequireReboot read write stateRequireRebootChanged()",
            "bool ConfigureIsRunning read write stateConfigureIsRunningChanged()",
            "bool UpdateAvailable read write stateUpdateAvailableChanged()",
            "bool UpdateInstalling read write stateUpdateInstallingChanged()",
            "bool UpdateInhibited read write stateUpdateInhibitedChanged()",
            "bool WebIfaceIsUp read write stateWebIfaceIsUpChanged()",
            "bool TimeSynced read write stateTimeSyncedChanged()",
            "QString UpdateInfo read write stateUpdateInfoChanged()",
            "QString InhibitReason read write stateInhibitReasonChanged()" }));
    QCOMPARE(methodTable(meta),
        QStringList(
            { "public signal stateVelunorStageChanged()", "public signal stateVelunorInitChanged()",
                "public signal stateVelunorInstallationChanged()",
                "public signal stateRequireConfigureChanged()",
                "public signal stateRequireRebootChanged()",
                "public signal stateConfigureIsRunningChanged()",
                "public signal stateUpdateAvailableChanged()",
                "public signal stateUpdateInstallingChanged()",
                "public signal stateUpdateInhibitedChanged()",
                "public signal stateWebIfaceIsUpChanged()",
                "public signal stateTimeSyncedChanged()", "public signal stateUpdateInfoChanged()",
                "public signal stateInhibitReasonChanged()", "private slot propertyChanged()" }));
    QCOMPARE(enumeratorTable(meta), QStringList());
}

void TestVelunorState::constructorLogsItsLine()
{
    const VelunorState state;
    QCOMPARE(m_log->take(), QStringList({ constructorLine(QStringLiteral("VelunorState")) }));
}

void TestVelunorState::startsFalseAndEmpty()
{
    const VelunorState state;
    QVERIFY(!state.parent());
    const QMetaObject &meta = VelunorState::staticMetaObject;
    for (int i = meta.propertyOffset(); i < meta.propertyCount(); ++i) {
        const QVariant value = meta.property(i).read(&state);
        QVERIFY2(value == QVariant(value.userType(), nullptr), meta.property(i).name());
    }
}

void TestVelunorState::notifiesOnlyOnChange_data()
{
    QTest::addColumn<int>("index");
    QTest::addColumn<bool>("logged");
    const QMetaObject &meta = VelunorState::staticMetaObject;
    for (int i = meta.propertyOffset(); i < meta.propertyCount(); ++i) {
        const QByteArray name(meta.property(i).name());
        QTest::newRow(name) << i << (name != "UpdateInhibited" && name != "InhibitReason");
    }
}

void TestVelunorState::notifiesOnlyOnChange()
{
    QFETCH(int, index);
    QFETCH(bool, logged);
    VelunorState state;
    const VelunorState fresh;
    const QMetaObject &meta = VelunorState::staticMetaObject;
    const QMetaProperty property = meta.property(index);
    const QVariant first = property.read(&state);
    const QVariant sample = sampleValue(state, property);
    m_log->clear();
    QSignalSpy changed(&state, property.notifySignal());
    const QString available
        = QString::fromLatin1(property.name()) == QLatin1String("UpdateAvailable")
        ? QStringLiteral("true")
        : QStringLiteral("false");
    const QStringList lines = logged
        ? QStringList({ "info: VelunorState::propertyChanged()",
            "debug: VelunorState::propertyChanged() update_available: " + available })
        : QStringList();

    QVERIFY(property.write(&state, first));
    QCOMPARE(changed.count(), 0);
    QCOMPARE(m_log->take(), QStringList());

    QVERIFY(property.write(&state, sample));
    QCOMPARE(property.read(&state), sample);
    QCOMPARE(changed.count(), 1);
    QCOMPARE(m_log->take(), lines);

    QVERIFY(property.write(&state, sample));
    QCOMPARE(changed.count(), 1);
    QCOMPARE(m_log->take(), QStringList());

    for (int i = meta.propertyOffset(); i < meta.propertyCount(); ++i) {
        if (i != index)
            QCOMPARE(meta.property(i).read(&state), meta.property(i).read(&fresh));
    }

    QVERIFY(property.write(&state, first));
    QCOMPARE(property.read(&state), first);
    QCOMPARE(changed.count(), 2);
    QCOMPARE(m_log->take().size(), lines.size());
}

void TestVelunorState::signalComesAfterTheValueIsStored()
{
    VelunorState state;
    bool seen = false;
    connect(&state, &VelunorState::stateUpdateInstallingChanged, this,
        [&] { seen = state.updateInstalling(); });
    QVERIFY(state.setProperty("UpdateInstalling", true));
    QVERIFY(seen);
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

void TestVelunorState::instanceIsOneObject()
{
    QVERIFY(VelunorState::instance());
    QCOMPARE(VelunorState::instance(), VelunorState::instance());
    QVERIFY(!VelunorState::instance()->parent());
}

QTEST_GUILESS_MAIN(TestVelunorState)
#include "tst_velunor_state.moc"
