// SPDX-License-Identifier: GPL-3.0-or-later
#include "testkit/appliance.h"
#include "testkit/machine/hostidentity.h"
#include "testkit/pagenames.h"
#include "testkit/waiting.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

using namespace PageNames;

namespace {

const QByteArray HostName = "a-host-name-that-has-forty-characters-xy";
const QByteArray Toggle = R"({"command":"toggle_standby"})";

QByteArray zoneList(const QString &id, const QString &name)
{
    return QJsonDocument(QJsonArray { QJsonObject { { "id", id }, { "name", name } } })
        .toJson(QJsonDocument::Compact);
}

/** The panels that the texts have to fit on. */
void addSizes()
{
    QTest::addColumn<int>("width");
    QTest::addColumn<int>("height");
    QTest::newRow("800x480") << 800 << 480;
    QTest::newRow("1280x720") << 1280 << 720;
    QTest::newRow("1280x800") << 1280 << 800;
}

Probe::Target inner(const QString &box)
{
    return Probe::Target("text").inside(box);
}

} // namespace

/** Texts of the clock and the notices are never cut; texts from outside are shown as they come. */
class TestTexts : public QObject {
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanup();

    void theClockTellsTheTimeInGerman_data() { addSizes(); }
    void theClockTellsTheTimeInGerman();
    void noticesAreNotCut_data() { addSizes(); }
    void noticesAreNotCut();
    void textsFromOutsideShowAsTheyCome();
    void aPassageIsSeenTheSameAtAnyMoment();

private:
    Probe &probe() { return m_appliance->program.probe(); }
    bool startOn(int width, int height);
    /** Where the letters of a clock text are, in pixels of the window. */
    QRectF painted(const QString &box);
    void everyTextFitsItsBox(const QString &page);

    std::unique_ptr<Appliance> m_appliance;
};

void TestTexts::initTestCase()
{
    QVERIFY(appearAs(HostName));
}

void TestTexts::cleanup()
{
    if (m_appliance && !m_appliance->program.isQuiet())
        QTest::qFail("Qt or the scene has complained", __FILE__, __LINE__);
    m_appliance.reset();
}

void TestTexts::theClockTellsTheTimeInGerman()
{
    QFETCH(int, width);
    QFETCH(int, height);
    struct Moment {
        const char *time; ///< on a Thursday in September, the longest day beside a long month
        QString in24;
        QString in12;
        bool afternoon;
    };
    const QList<Moment> moments { { "07:05:00", "7:05", "7:05", false },
        { "19:05:00", "19:05", "7:05", true }, { "00:05:00", "0:05", "12:05", false },
        { "12:00:00", "12:00", "12:00", true }, { "22:48:00", "22:48", "10:48", true } };

    const QTemporaryDir directory;
    QFile clock(directory.filePath("now"));
    const auto setClock = [&clock](const char *time) {
        return clock.open(QIODevice::WriteOnly) && clock.write("2026-09-17 ") > 0
            && clock.write(time) > 0 && clock.write("\n") > 0 && (clock.close(), true);
    };
    QVERIFY(setClock(moments.first().time));
    m_appliance = std::make_unique<Appliance>();
    Program &program = m_appliance->program;
    program.setEnvironment("LC_ALL", "de_DE.UTF-8");
    program.setEnvironment("TZ", "UTC");
    program.setEnvironment("LD_PRELOAD", TOUCHUI_FAKETIME);
    program.setEnvironment("FAKETIME_TIMESTAMP_FILE", clock.fileName());
    program.setEnvironment("FAKETIME_NO_CACHE", "1");
    program.setEnvironment("FAKETIME_DONT_FAKE_MONOTONIC", "1");
    QVERIFY(startOn(width, height));
    m_appliance->sendCommand(Toggle);
    QVERIFY(m_appliance->waitForPage(Clock));
    QVERIFY(probe().setObjectProperty("tick", "interval", 20)); // not to wait for every second

    for (const Moment &moment : moments) {
        QVERIFY(setClock(moment.time));
        for (const bool in24 : { true, false }) {
            m_appliance->publishSetting("touchscreen_clock24", in24 ? "true" : "false");
            QTRY_COMPARE_WITH_TIMEOUT(probe().property("time", "text"),
                QJsonValue(in24 ? moment.in24 : moment.in12), PatienceMs);
            QTRY_COMPARE_WITH_TIMEOUT(probe().shows("marker"), !in24, PatienceMs);
            if (!in24)
                QCOMPARE(
                    probe().property("marker", "text"), QJsonValue(moment.afternoon ? "PM" : "AM"));
            QCOMPARE(probe().property("weekday", "text"), QJsonValue("Donnerstag"));
            QCOMPARE(probe().property("day", "text"), QJsonValue("17"));
            QCOMPARE(probe().property("month", "text"), QJsonValue("September"));

            QStringList boxes { "time", "weekday", "day", "month" };
            if (!in24)
                boxes.append("marker");
            for (int i = 0; i < boxes.size(); ++i) {
                const QString &box = boxes.at(i);
                QVERIFY2(!probe().property(inner(box), "truncated").toBool(), qPrintable(box));
                const QRectF letters = painted(box);
                QVERIFY2(letters.width() > 0, qPrintable(box));
                QVERIFY2(letters.left() >= 0 && letters.right() <= width, qPrintable(box));
                QVERIFY2(letters.width() <= probe().property(inner(box), "width").toDouble() + 1,
                    qPrintable(box));
                // Beside each other; above each other only blanks of the fonts overlap.
                for (int other = 0; other < i; ++other) {
                    if (boxes.at(other) == "time" && box != "marker")
                        continue;
                    const QRectF neighbour = painted(boxes.at(other));
                    QVERIFY2(letters.right() < neighbour.left()
                            || neighbour.right() < letters.left()
                            || letters.bottom() < neighbour.top()
                            || neighbour.bottom() < letters.top(),
                        qPrintable(box + " and " + boxes.at(other)));
                }
            }
        }
    }
    QVERIFY(program.stop());
}

void TestTexts::noticesAreNotCut()
{
    QFETCH(int, width);
    QFETCH(int, height);
    m_appliance = std::make_unique<Appliance>();
    QVERIFY(startOn(width, height));
    m_appliance->publishCore("coreDetected", "false");
    everyTextFitsItsBox(Failure);
    if (QTest::currentTestFailed())
        return;
    m_appliance->publishZones(zoneList("z2", "Bath"));
    m_appliance->publishCore("coreDetected", "true");
    everyTextFitsItsBox(NotFound);
    if (QTest::currentTestFailed())
        return;
    m_appliance->publishState("UpdateInstalling", "true");
    everyTextFitsItsBox(Update);
    if (QTest::currentTestFailed())
        return;
    QVERIFY(m_appliance->program.stop());
}

void TestTexts::everyTextFitsItsBox(const QString &page)
{
    QVERIFY(m_appliance->waitForPage(page));
    QCOMPARE(probe().property(inner("addresses"), "text"),
        QJsonValue(QString("<b>http://" + HostName + ".local</b> or <b>http://192.0.2.17</b>")));
    const Probe::Target texts = Probe::Target::type("QQuickText").inside(page);
    const QStringList names { "text", "width", "height", "paintedWidth", "paintedHeight",
        "truncated" };
    QMap<QString, QJsonArray> values;
    for (const QString &name : names)
        values.insert(name, probe().propertyOfAll(texts, name));
    QVERIFY(values["text"].size() >= 6);
    for (int i = 0; i < values["text"].size(); ++i) {
        const QByteArray text = values["text"].at(i).toString().toUtf8();
        QVERIFY2(!values["truncated"].at(i).toBool(), text);
        QVERIFY2(values["paintedWidth"].at(i).toDouble() <= values["width"].at(i).toDouble(), text);
        QVERIFY2(
            values["paintedHeight"].at(i).toDouble() <= values["height"].at(i).toDouble(), text);
    }
}

void TestTexts::textsFromOutsideShowAsTheyCome()
{
    m_appliance = std::make_unique<Appliance>();
    QVERIFY(m_appliance->start());
    m_appliance->images.setBehaviour("spy", {});
    const QString spy = QString("<img src=\"http://%1/image/spy\">")
                            .arg(QString::fromLatin1(m_appliance->images.address()));
    const QStringList texts { "<b>Bath</b>", "</b></font>Bath", spy, "&amp; &lt;3 &#65;",
        "a < b & c > d", "\"Bath\" 'Hall'", "100 %1 %2", QString("A long name ").repeated(25),
        QString(300, 'x'), QString(300, '&'), QString::fromUtf8("غرفة المعيشة"),
        QString::fromUtf8("Bath \xf0\x9f\x9b\x81\xf0\x9f\x8e\xb5"),
        QString::fromUtf8("起居室的音響系統"), QString::fromUtf8("Küche Ærø"),
        "<a href=\"http://example.net\">Hall</a><br>", "\\n\\\"" };

    for (const QString &text : texts) {
        // On the player: the titles.
        const QByteArray bytes = text.toUtf8();
        m_appliance->publishZone("nowPlaying/song", bytes);
        m_appliance->publishZone("nowPlaying/artist", bytes);
        m_appliance->publishZone("nowPlaying/album", bytes);
        QVERIFY(m_appliance->handled());
        for (const QString &line : { QString("songTitle"), QString("artist"), QString("album") }) {
            const Probe::Target label = Probe::Target("label").inside(line);
            QCOMPARE(probe().property(label, "text").toString(), text);
            QCOMPARE(probe().property(label, "textFormat"), QJsonValue(Qt::PlainText));
        }
        QVERIFY(!probe().picture().isNull());

        // A zone of that name is chosen from the list, and waited for.
        m_appliance->publishZones(zoneList("z2", text));
        m_appliance->publishCore("coreDetected", "true");
        QVERIFY(m_appliance->waitForPage(NotFound));
        const Probe::Target button("chooserButton");
        QTRY_VERIFY_WITH_TIMEOUT(probe().shows(button), PatienceMs);
        QVERIFY(probe().tap(button));
        const Probe::Target row = Probe::Target::text(text).inside("zoneList");
        QTRY_VERIFY_WITH_TIMEOUT(probe().shows(row), PatienceMs);
        QCOMPARE(probe().property(row, "textFormat"), QJsonValue(Qt::PlainText));
        QVERIFY(!probe().picture().isNull());
        QVERIFY(probe().tap(row));
        QTRY_VERIFY_WITH_TIMEOUT(!probe().shows("zoneList"), PatienceMs);
        const Probe::Target line = inner("line0");
        QCOMPARE(probe().property(line, "text").toString(),
            "We're still waiting for Roon zone <b>" + text.toHtmlEscaped() + "</b> to appear...");
        QVERIFY(!probe().picture().isNull());
        QVERIFY(probe().property(line, "paintedWidth").toDouble()
            <= probe().property(line, "width").toDouble());

        // It appears.
        m_appliance->publishZones(zoneList("z1", text));
        m_appliance->publishZone("name", bytes);
        m_appliance->publishZone("is_play_allowed", "true");
        m_appliance->publishCore("coreDetected", "true");
        QVERIFY(m_appliance->waitForPage(Player));
        QCOMPARE(probe().property("zoneNameText", "text").toString(), text);
        QCOMPARE(probe().property("zoneNameText", "textFormat"), QJsonValue(Qt::PlainText));
    }
    QVERIFY(m_appliance->program.stop());
    QCOMPARE(m_appliance->images.requestsFor("spy"), 0);
}

bool TestTexts::startOn(int width, int height)
{
    m_appliance->program.setEnvironment("VELUNOR_TOUCHUI_WIDTH", QString::number(width));
    m_appliance->program.setEnvironment("VELUNOR_TOUCHUI_HEIGHT", QString::number(height));
    return m_appliance->start();
}

QRectF TestTexts::painted(const QString &box)
{
    const QPointF middle = probe().centre(inner(box));
    const QSizeF size(probe().property(inner(box), "paintedWidth").toDouble(),
        probe().property(inner(box), "paintedHeight").toDouble());
    return { middle - QPointF(size.width() / 2, size.height() / 2), size };
}

void TestTexts::aPassageIsSeenTheSameAtAnyMoment()
{
    m_appliance = std::make_unique<Appliance>();
    QVERIFY(m_appliance->start());
    m_appliance->publishZone("nowPlaying/album", QByteArray(40, 'm'));
    QVERIFY(m_appliance->handled());
    const Probe::Target label = Probe::Target("label").inside("album");
    const auto passage = [&] {
        const QJsonArray items = probe().scene(label);
        return items.isEmpty() ? QJsonObject()
                               : items.first().toObject().value("passage").toObject();
    };
    const QJsonObject first = passage();
    QCOMPARE(first.value("duration"), QJsonValue(8000));
    const double from = first.value("from").toDouble();
    const double to = first.value("to").toDouble();
    // Also where it ends between the last frame and the first look.
    for (int attempt = 0; attempt < 100; ++attempt) {
        const double left = (probe().property(label, "x").toDouble() - to) / (from - to);
        QVERIFY(probe().pass(std::chrono::milliseconds(int(left * 8000) - attempt % 8)));
        QCOMPARE(passage(), first);
    }
}

QTEST_GUILESS_MAIN(TestTexts)
#include "tst_texts.moc"
