// SPDX-License-Identifier: GPL-3.0-or-later
#include "markdowntable.h"
#include "testkit/machine/panel.h"
#include "testkit/process/program.h"

#include <QFile>
#include <QTest>

#include <algorithm>

namespace {

const QString Page = QStringLiteral(TOUCHUI_CHECKOUT "/docs/configuration.md");
const QString SettingsFile = "/data/velunor-touch.ini";
const QString NoPlayerPage = "unknown screen dimensions!";

/** A row of the page: the name, the default, and what is said of an odd value. */
struct Row {
    QString name;
    QString fallback;
    QString odd;
};

/** The rows of the table with this head whose names are in code. */
QList<Row> documented(const QString &head)
{
    QList<Row> rows;
    QList<QStringList> table = markdownTable(Page, head);
    const QStringList heads = table.isEmpty() ? QStringList() : table.takeFirst();
    for (const QStringList &cells : qAsConst(table)) {
        const auto cell
            = [&](const char *name) { return cells.value(heads.indexOf(name)).remove('`'); };
        rows.append({ cells.first().mid(1, cells.first().size() - 2), cell("Default"),
            cell("An odd value") });
    }
    return rows;
}

/** An odd value, what the program makes of it, and the word of the page that says so. */
struct Odd {
    QString name;
    QString value;
    QString counts;
    QString said;
    QString logged = {};
};

QList<Odd> oddVariables()
{
    const QString fallback = "counts as the default, with a warning";
    return {
        { "VELUNOR_TOUCHUI_CONTROL_ZONE", "No Such Zone", "No Such Zone",
            "is looked for as it is" },
        { "VELUNOR_TOUCHUI_CONTROL_ZONE", "", "", "An empty one" },
        { "VELUNOR_TOUCHUI_WIDTH", "wide", "800", fallback,
            "setting default width failed. Falling back to 800" },
        { "VELUNOR_TOUCHUI_WIDTH", "1024", "1024", "any other width has no player page",
            NoPlayerPage },
        { "VELUNOR_TOUCHUI_HEIGHT", "480.5", "480", fallback,
            "setting default height failed. Falling back to 480" },
        { "VELUNOR_TOUCHUI_HEIGHT", "3", "3", "nothing else is tested" },
        { "VELUNOR_TOUCHUI_SCREENTYPE", "display3", "DISPLAY3",
            "counts as any other panel: brightness 13 to 254" },
        { "VELUNOR_TOUCHUI_ROTATED", "1", "false", "counts as false" },
        { "VELUNOR_TOUCHUI_ROTATION", "", "0", fallback,
            "setting default rotation failed. Falling back to 0" },
        { "VELUNOR_TOUCHUI_SWAPPED", "yes", "false", "counts as false" },
        { "TOUCHUI_DEBUG", "DEBUG", "unset", "prints none" },
        { "QML_DISABLE_DISK_CACHE", "false", "true", "is replaced by true" },
    };
}

QList<Odd> oddKeys()
{
    const QString fallback = "what is no unsigned number counts as the default";
    return {
        { "LCD/Brightness", "bright", "150", fallback },
        { "LCD/Brightness", "-1", "150", fallback },
        { "LCD/Brightness", "999", "999", "is handed to it as it is" },
        { "LCD/ClockBrightness", "bright", "150", "likewise" },
        { "LCD/ClockBrightness", "999", "999", "likewise" },
        { "LCD/DefaultPlayerScreen", "first", "11", fallback },
    };
}

QString text(const QJsonValue &value)
{
    return value.toVariant().toString();
}

/** What the program has made of a variable or key. */
QString taken(Program *program, const QString &name)
{
    const auto property = [program](const char *object, const char *key) {
        return text(program->probe().objectProperty(Probe::Target::type(object), key));
    };
    if (name == "VELUNOR_TOUCHUI_CONTROL_ZONE")
        return property("Player", "wantedZone");
    if (name == "VELUNOR_TOUCHUI_WIDTH")
        return property("ScreenController", "width");
    if (name == "VELUNOR_TOUCHUI_HEIGHT")
        return property("ScreenController", "height");
    if (name == "VELUNOR_TOUCHUI_ROTATED")
        return property("ScreenController", "rotated");
    if (name == "VELUNOR_TOUCHUI_ROTATION")
        return property("ScreenController", "rotation");
    if (name == "VELUNOR_TOUCHUI_SWAPPED")
        return property("ScreenController", "swapped");
    if (name == "LCD/Brightness")
        return property("Settings", "brightness");
    if (name == "LCD/ClockBrightness")
        return property("Settings", "clockBrightness");
    if (name == "LCD/DefaultPlayerScreen")
        return property("Settings", "defaultPlayerScreen");
    if (name == "QML_DISABLE_DISK_CACHE")
        return text(program->probe().environment(name));
    const auto line = [program](const QString &beginning) {
        const auto found = std::find_if(program->log().begin(), program->log().end(),
            [&](const LogLine &each) { return each.text.startsWith(beginning); });
        return found == program->log().end() ? QString() : found->text.mid(beginning.size());
    };
    if (name == "VELUNOR_TOUCHUI_SCREENTYPE")
        return line("ScreenController::ScreenController() screenType: ");
    if (name == "TOUCHUI_DEBUG")
        return line("Mqtt::constructor").isEmpty() ? "unset" : "debug";
    return "nobody knows " + name;
}

QStringList names(const QList<Row> &rows)
{
    QStringList found;
    for (const Row &row : rows)
        found.append(row.name);
    return found;
}

} // namespace

/** The program takes from its surroundings what docs/configuration.md says. */
class TestConfiguration : public QObject {
    Q_OBJECT

private slots:
    void cleanup();

    void everyOneHasAnOddValue();
    void defaults();
    void oddValues_data();
    void oddValues();
    void panelTypes();
};

void TestConfiguration::cleanup()
{
    QFile::remove(SettingsFile);
}

void TestConfiguration::everyOneHasAnOddValue()
{
    QStringList tried;
    for (const Odd &odd : oddVariables())
        tried.append(odd.name);
    tried.removeDuplicates();
    QCOMPARE(tried, names(documented("Variable")));

    tried = QStringList { "/data", "/velunor-touch.ini" }; // which have no value
    for (const Odd &odd : oddKeys())
        tried.append(odd.name);
    tried.removeDuplicates();
    QCOMPARE(tried, names(documented("Path or key")));
}

void TestConfiguration::defaults()
{
    const Panel panel;
    Program program;
    program.unsetEnvironment("TOUCHUI_DEBUG");
    QVERIFY(program.startAndWait());
    for (const Row &row : documented("Variable") + documented("Path or key")) {
        if (row.fallback.isEmpty())
            continue;
        const bool anyCase = row.name == "VELUNOR_TOUCHUI_SCREENTYPE";
        const QString value = taken(&program, row.name);
        QVERIFY2(
            value.compare(row.fallback, anyCase ? Qt::CaseInsensitive : Qt::CaseSensitive) == 0,
            qPrintable(row.name + " is " + value + ", documented as " + row.fallback));
    }
}

void TestConfiguration::oddValues_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("value");
    QTest::addColumn<QString>("counts");
    QTest::addColumn<QString>("said");
    QTest::addColumn<QString>("logged");
    for (const Odd &odd : oddVariables() + oddKeys())
        QTest::addRow("%s=%s", qPrintable(odd.name), qPrintable(odd.value))
            << odd.name << odd.value << odd.counts << odd.said << odd.logged;
}

void TestConfiguration::oddValues()
{
    QFETCH(QString, name);
    QFETCH(QString, value);
    QFETCH(QString, counts);
    QFETCH(QString, said);
    QFETCH(QString, logged);
    const QList<Row> rows = documented("Variable") + documented("Path or key");
    const auto row = std::find_if(
        rows.begin(), rows.end(), [&name](const Row &each) { return each.name == name; });
    QVERIFY(row != rows.end());
    QVERIFY2(row->odd.contains(said), qPrintable(row->odd));

    const Panel panel;
    Program program;
    if (name.startsWith("LCD/")) {
        QFile file(SettingsFile);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("[LCD]\n" + name.mid(4).toUtf8() + '=' + value.toUtf8() + '\n');
    } else {
        program.setEnvironment(name, value);
    }
    QVERIFY(program.startAndWait());
    QCOMPARE(taken(&program, name), counts);
    if (name == "LCD/Brightness")
        QCOMPARE(panel.brightness(), counts.toUtf8());
    QStringList complaints;
    for (const LogLine &line : program.log()) {
        if ((line.level == "WARN" || line.level == "ERROR")
            && (line.file == "screencontroller.cpp" || line.text == NoPlayerPage))
            complaints.append(line.text);
    }
    QCOMPARE(complaints, logged.isEmpty() ? QStringList() : QStringList(logged));
    QVERIFY(program.stop());
}

void TestConfiguration::panelTypes()
{
    QList<QStringList> table = markdownTable(Page, "Type");
    QVERIFY(table.size() > 1);
    table.removeFirst();
    table.append(QStringList { "`any other`", "13 to 254" });
    for (const QStringList &cells : qAsConst(table)) {
        Program program;
        program.setEnvironment("VELUNOR_TOUCHUI_SCREENTYPE", QString(cells.at(0)).remove('`'));
        QVERIFY(program.startAndWait());
        const auto end = [&program](const char *property) {
            return text(
                program.probe().objectProperty(Probe::Target::type("ScreenController"), property));
        };
        QCOMPARE(end("minBrightness") + " to " + end("maxBrightness"), cells.at(1));
    }
}

QTEST_GUILESS_MAIN(TestConfiguration)
#include "tst_configuration.moc"
