// SPDX-License-Identifier: GPL-3.0-or-later
#include "logcapture.h"
#include "metatable.h"
#include "roonzone.h"
#include "samplevalue.h"

#include <QSignalSpy>
#include <QTest>

class TestRoonZone : public QObject {
    Q_OBJECT

private slots:
    void init() { m_log.reset(new LogCapture); }
    void cleanup() { m_log.reset(); }

    void metaObjectIsTheInterface();
    void constructorLogsItsLine();
    void startsUnknown();
    void onlyIdNameAndStateNotify_data();
    void onlyIdNameAndStateNotify();
    void signalComesAfterTheValueIsStored();
    void outputsAreTheDisplayNames_data();
    void outputsAreTheDisplayNames();
    void outputsAreReplacedWhole();
    void outputsAreLoggedWhole();

private:
    QScopedPointer<LogCapture> m_log;
};

void TestRoonZone::metaObjectIsTheInterface()
{
    const QMetaObject &meta = RoonZone::staticMetaObject;
    QCOMPARE(meta.superClass(), &QObject::staticMetaObject);
    QCOMPARE(propertyTable(meta),
        QStringList({ "QString id read write zoneChanged()",
            "QString name read write zoneChanged()", "QString state read write zoneChanged()",
            "uint nowPlaying_seekPosition read write", "uint nowPlaying_length read write",
            "QString nowPlaying_album read write", "QString nowPlaying_song read write",
            "QString nowPlaying_artist read write", "QString nowPlaying_imageKey read write",
            "bool settings_shuffle read write", "QString settings_loop read write",
            "bool settings_autoRadio read write", "bool volume_available read write",
            "QString volume_type read write", "float volume_value read write",
            "float volume_min read write", "float volume_max read write",
            "float volume_hard_limit_min read write", "float volume_hard_limit_max read write",
            "float volume_soft_limit read write", "float volume_step read write",
            "bool volume_is_muted read write", "uint queue_items_remaining read write",
            "uint queue_time_remaining read write", "bool is_previous_allowed read write",
            "bool is_next_allowed read write", "bool is_pause_allowed read write",
            "bool is_play_allowed read write", "bool is_seek_allowed read write" }));
    QCOMPARE(methodTable(meta), QStringList({ "public signal zoneChanged()" }));
    QCOMPARE(enumeratorTable(meta), QStringList());
}

void TestRoonZone::constructorLogsItsLine()
{
    const RoonZone zone(QStringLiteral("1601"));
    QCOMPARE(m_log->take(), QStringList({ constructorLine(QStringLiteral("RoonZone")) }));
}

void TestRoonZone::startsUnknown()
{
    const RoonZone zone(QStringLiteral("1601"));
    QVERIFY(!zone.parent());
    QCOMPARE(zone.id(), QStringLiteral("1601"));
    QCOMPARE(zone.name(), QStringLiteral("unknown"));
    QCOMPARE(zone.state(), QStringLiteral("unknown"));
    QCOMPARE(zone.outputs(), QStringList());
    const QMetaObject &meta = RoonZone::staticMetaObject;
    for (int i = meta.propertyOffset() + 3; i < meta.propertyCount(); ++i) {
        const QVariant value = meta.property(i).read(&zone);
        QVERIFY2(value == QVariant(value.userType(), nullptr), meta.property(i).name());
    }
}

void TestRoonZone::onlyIdNameAndStateNotify_data()
{
    QTest::addColumn<int>("index");
    QTest::addColumn<int>("signalsPerChange");
    const QMetaObject &meta = RoonZone::staticMetaObject;
    for (int i = meta.propertyOffset(); i < meta.propertyCount(); ++i)
        QTest::newRow(meta.property(i).name()) << i << (i - meta.propertyOffset() < 3 ? 1 : 0);
}

void TestRoonZone::onlyIdNameAndStateNotify()
{
    QFETCH(int, index);
    QFETCH(int, signalsPerChange);
    RoonZone zone(QStringLiteral("1601"));
    const QMetaProperty property = zone.metaObject()->property(index);
    const QVariant first = property.read(&zone);
    const QVariant sample = sampleValue(zone, property);
    QSignalSpy changed(&zone, &RoonZone::zoneChanged);

    QVERIFY(property.write(&zone, first));
    QCOMPARE(changed.count(), 0);
    QVERIFY(property.write(&zone, sample));
    QCOMPARE(property.read(&zone), sample);
    QCOMPARE(changed.count(), signalsPerChange);
    QVERIFY(property.write(&zone, sample));
    QCOMPARE(changed.count(), signalsPerChange);
    QVERIFY(property.write(&zone, first));
    QCOMPARE(property.read(&zone), first);
    QCOMPARE(changed.count(), 2 * signalsPerChange);

    // Each property has a place of its own.
    const RoonZone fresh(QStringLiteral("1601"));
    QVERIFY(property.write(&zone, sample));
    const QMetaObject &meta = RoonZone::staticMetaObject;
    for (int i = meta.propertyOffset(); i < meta.propertyCount(); ++i) {
        if (i != index)
            QCOMPARE(meta.property(i).read(&zone), meta.property(i).read(&fresh));
    }
    const QString line = constructorLine(QStringLiteral("RoonZone"));
    QCOMPARE(m_log->take(), QStringList({ line, line }));
}

void TestRoonZone::signalComesAfterTheValueIsStored()
{
    RoonZone zone(QStringLiteral("1601"));
    QString seen;
    connect(&zone, &RoonZone::zoneChanged, this, [&] { seen = zone.state(); });
    zone.setState(QStringLiteral("playing"));
    QCOMPARE(seen, QStringLiteral("playing"));
}

void TestRoonZone::outputsAreTheDisplayNames_data()
{
    QTest::addColumn<QByteArray>("json");
    QTest::addColumn<QStringList>("outputs");
    QTest::newRow("one") << QByteArray(R"([{"display_name":"Kitchen"}])")
                         << QStringList({ "Kitchen" });
    QTest::newRow("array order") << QByteArray(
        R"([{"display_name":"Kitchen"},{"display_name":"Bath"},{"display_name":"Attic"}])")
                                 << QStringList({ "Kitchen", "Bath", "Attic" });
    QTest::newRow("other members")
        << QByteArray(R"([{"output_id":"17","display_name":"Kitchen","volume":{"value":3}}])")
        << QStringList({ "Kitchen" });
    QTest::newRow("without a name") << QByteArray(R"([{"output_id":"17"},{"display_name":"Bath"}])")
                                    << QStringList({ "", "Bath" });
    QTest::newRow("name not a text")
        << QByteArray(R"([{"display_name":7},{"display_name":null}])") << QStringList({ "", "" });
    QTest::newRow("elements not objects")
        << QByteArray(R"([1,"Kitchen",null,[]])") << QStringList({ "", "", "", "" });
    QTest::newRow("the same name twice")
        << QByteArray(R"([{"display_name":"Bath"},{"display_name":"Bath"}])")
        << QStringList({ "Bath", "Bath" });
    QTest::newRow("accented") << QByteArray(R"([{"display_name":"Küche"}])")
                              << QStringList({ "Küche" });
    QTest::newRow("empty array") << QByteArray("[]") << QStringList();
    QTest::newRow("empty payload") << QByteArray() << QStringList();
    QTest::newRow("object") << QByteArray(R"({"display_name":"Kitchen"})") << QStringList();
    QTest::newRow("cut off") << QByteArray(R"([{"display_name":"Kitchen")") << QStringList();
    QTest::newRow("no JSON") << QByteArray("Kitchen") << QStringList();
    QTest::newRow("not UTF-8") << QByteArray("[{\"display_name\":\"\xff\xfe\"}]") << QStringList();
}

void TestRoonZone::outputsAreTheDisplayNames()
{
    QFETCH(QByteArray, json);
    QFETCH(QStringList, outputs);
    RoonZone zone(QStringLiteral("1601"));
    zone.setOutputs(R"([{"display_name":"former"}])");
    QSignalSpy changed(&zone, &RoonZone::zoneChanged);
    zone.setOutputs(json);
    QCOMPARE(zone.outputs(), outputs);
    zone.setOutputs(json);
    QCOMPARE(zone.outputs(), outputs);
    QCOMPARE(changed.count(), 0);
}

void TestRoonZone::outputsAreReplacedWhole()
{
    RoonZone zone(QStringLiteral("1601"));
    zone.setOutputs(R"([{"display_name":"Kitchen"},{"display_name":"Bath"}])");
    zone.setOutputs(R"([{"display_name":"Hall"}])");
    QCOMPARE(zone.outputs(), QStringList({ "Hall" }));
}

void TestRoonZone::outputsAreLoggedWhole()
{
    RoonZone zone(QStringLiteral("1601"));
    m_log->clear();
    zone.setOutputs(R"( [ {"display_name": "Küche", "output_id": "17"} ] )");
    zone.setOutputs("broken");
    QCOMPARE(m_log->take(),
        QStringList(
            { R"(debug: RoonZone::setOutputs() [{"display_name":"Küche","output_id":"17"}])",
                "debug: RoonZone::setOutputs() []" }));
}

QTEST_GUILESS_MAIN(TestRoonZone)
#include "tst_roonzone.moc"
