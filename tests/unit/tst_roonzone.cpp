// SPDX-License-Identifier: GPL-3.0-or-later
#include "roonzone.h"

#include "propertyclasstest.h"

#include <QSignalSpy>
#include <QTest>

class TestRoonZone : public PropertyClassTest {
    Q_OBJECT

    std::unique_ptr<QObject> make() const override { return std::make_unique<RoonZone>("1601"); }
    QList<PropertyRow> rows() const override;
    QStringList methodEntries() const override { return { "public signal zoneChanged()" }; }

private slots:
    void startsWithoutOutputs();
    void outputsAreTheDisplayNames_data();
    void outputsAreTheDisplayNames();
    void outputsAreReplacedWhole();
    void outputsAreLoggedWhole();
};

QList<PropertyRow> TestRoonZone::rows() const
{
    return {
        { "QString id read write zoneChanged()", "1601" },
        { "QString name read write zoneChanged()", "unknown" },
        { "QString state read write zoneChanged()", "unknown" },
        { "uint nowPlaying_seekPosition read write", 0u },
        { "uint nowPlaying_length read write", 0u },
        { "QString nowPlaying_album read write", QString() },
        { "QString nowPlaying_song read write", QString() },
        { "QString nowPlaying_artist read write", QString() },
        { "QString nowPlaying_imageKey read write", QString() },
        { "bool settings_shuffle read write", false },
        { "QString settings_loop read write", QString() },
        { "bool settings_autoRadio read write", false },
        { "bool volume_available read write", false },
        { "QString volume_type read write", QString() },
        { "float volume_value read write", 0.0f },
        { "float volume_min read write", 0.0f },
        { "float volume_max read write", 0.0f },
        { "float volume_hard_limit_min read write", 0.0f },
        { "float volume_hard_limit_max read write", 0.0f },
        { "float volume_soft_limit read write", 0.0f },
        { "float volume_step read write", 0.0f },
        { "bool volume_is_muted read write", false },
        { "uint queue_items_remaining read write", 0u },
        { "uint queue_time_remaining read write", 0u },
        { "bool is_previous_allowed read write", false },
        { "bool is_next_allowed read write", false },
        { "bool is_pause_allowed read write", false },
        { "bool is_play_allowed read write", false },
        { "bool is_seek_allowed read write", false },
    };
}

void TestRoonZone::startsWithoutOutputs()
{
    QCOMPARE(RoonZone(QStringLiteral("1601")).outputs(), QStringList());
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
