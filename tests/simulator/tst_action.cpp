// SPDX-License-Identifier: GPL-3.0-or-later
#include "simulator/scenario/action.h"
#include "markdowntable.h"
#include "simulator/scenario/actionkind.h"

#include <QRegularExpression>
#include <QTest>

namespace {

/** What stands between back-quotes in a cell that is nothing but a list of such. */
QStringList codes(const QString &cell)
{
    QStringList found;
    QRegularExpressionMatchIterator matches
        = QRegularExpression(QStringLiteral("`([^`]*)`")).globalMatch(cell);
    while (matches.hasNext())
        found.append(matches.next().captured(1));
    return found;
}

} // namespace

class TestAction : public QObject {
    Q_OBJECT

private slots:
    void wordsAndJsonMeanTheSame_data();
    void wordsAndJsonMeanTheSame();
    void isPrintedWithItsArguments();
    void malformedTellsWhatWasExpected_data();
    void malformedTellsWhatWasExpected();
    void everyKindCanBeCarriedOut_data();
    void everyKindCanBeCarriedOut();
    void overviewNamesEveryAction();
    void documentNamesEveryActionWithItsArguments();
};

void TestAction::wordsAndJsonMeanTheSame_data()
{
    QTest::addColumn<QString>("words");
    QTest::addColumn<QString>("json");
    const auto row = [](const char *words, const char *json) {
        QTest::newRow(words) << QString::fromLatin1(words) << QString::fromLatin1(json);
    };
    row("core_lost", R"({"action":"core_lost"})");
    row("  core_lost ", R"({"action":"core_lost"})");
    row("image mode=slow ms=3000", R"({"action":"image","mode":"slow","ms":3000})");
    row("volume value=-12.5 zone=Kitchen", R"({"action":"volume","value":-12.5,"zone":"Kitchen"})");
    row("shuffle on=true", R"({"action":"shuffle","on":true})");
    row("rename zone=\"Living Room\" name=\"A = B\"",
        R"({"action":"rename","zone":"Living Room","name":"A = B"})");
    row("rename name=\"the \"\"\"big\"\"\" one\"",
        R"({"action":"rename","name":"the \"big\" one"})");
    row("rename name=\"a\tb\"", R"({"action":"rename","name":"a\tb"})");
    row("rename name=", R"({"action":"rename","name":""})");
    row("group zones=,\"Living Room\"", R"({"action":"group","zones":["","Living Room"]})");
    row("group zones=Kitchen,Bath", R"({"action":"group","zones":["Kitchen","Bath"]})");
}

void TestAction::wordsAndJsonMeanTheSame()
{
    QFETCH(QString, words);
    QFETCH(QString, json);
    Action fromWords;
    Action fromJson;
    QString problem;
    QVERIFY2(Action::fromText(words, &fromWords, &problem), qPrintable(problem));
    QVERIFY2(Action::fromText(json, &fromJson, &problem), qPrintable(problem));
    QCOMPARE(fromWords.name, fromJson.name);
    QCOMPARE(fromWords.arguments, fromJson.arguments);
    // What is printed can be typed again.
    Action again;
    QVERIFY2(Action::fromText(fromJson.words(), &again, &problem), qPrintable(problem));
    QCOMPARE(again.arguments, fromJson.arguments);
}

void TestAction::isPrintedWithItsArguments()
{
    Action action;
    QString problem;
    QVERIFY(Action::fromText(QStringLiteral("core_lost"), &action, &problem));
    QCOMPARE(action.words(), QStringLiteral("core_lost"));
    QVERIFY(Action::fromText(
        QStringLiteral(R"({"action":"rename","zone":"Living Room","name":"Salon"})"), &action,
        &problem));
    QCOMPARE(action.words(), QStringLiteral("rename name=Salon zone=\"Living Room\""));
    QVERIFY(Action::fromText(QStringLiteral("image ms=5 mode=slow"), &action, &problem));
    QCOMPARE(action.words(), QStringLiteral("image mode=slow ms=5"));
    QVERIFY(
        Action::fromText(QStringLiteral("group zones=\"Living Room\",Bath"), &action, &problem));
    QCOMPARE(action.words(), QStringLiteral("group zones=\"Living Room,Bath\""));
}

void TestAction::malformedTellsWhatWasExpected_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<QString>("found");
    const auto row = [](const char *line, const char *found) {
        QTest::newRow(line) << QString::fromLatin1(line) << QString::fromLatin1(found);
    };
    row("", "found \"\"");
    row("explode", "found \"explode\"");
    row("core_lost now", "found \"now\"");
    row("image", "found none");
    row("image mode=slow ms=soon", "found \"ms=soon\"");
    row("image mode=slow hue=red", "found \"hue\"");
    row("shuffle on=perhaps", "found \"on=perhaps\"");
    row("image mode=odd", "one of normal, slow, hang, fail, drop, garbage, found \"odd\"");
    row("image mode=slow ms=-1", "found -1");
    row("play track=3", "expected \"album\" where there is \"track\"");
    row("play album=I track=99", "found 99");
    row("image mode", "found \"mode\"");
    row("{", "expected a JSON object");
    row("{}", "\"action\"");
    row(R"({"action":7})", "\"action\"");
    row(R"({"action":"image","mode":7})", "found 7");
    row(R"({"action":"image","mode":"slow","ms":1.5})", "found 1.5");
    row(R"({"action":"group","zones":"Kitchen"})", "found \"Kitchen\"");
    row(R"({"action":"group","zones":[7]})", "found [7]");
}

void TestAction::malformedTellsWhatWasExpected()
{
    QFETCH(QString, line);
    QFETCH(QString, found);
    Action action;
    QString problem;
    QVERIFY(!Action::fromText(line, &action, &problem));
    QVERIFY2(problem.contains(QLatin1String("expected")), qPrintable(problem));
    QVERIFY2(problem.contains(found), qPrintable(problem));
    QVERIFY(action.name.isEmpty());
}

void TestAction::everyKindCanBeCarriedOut_data()
{
    QTest::addColumn<int>("index");
    for (int i = 0; i < ActionKind::all().size(); ++i)
        QTest::newRow(ActionKind::all().at(i).name) << i;
}

void TestAction::everyKindCanBeCarriedOut()
{
    QFETCH(int, index);
    const ActionKind &kind = ActionKind::all().at(index);
    QVERIFY(kind.carryOut);
    QCOMPARE(ActionKind::find(QString::fromLatin1(kind.name)), &kind); // no name twice
}

void TestAction::overviewNamesEveryAction()
{
    const QStringList lines = Action::overview().split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    QCOMPARE(lines.size(), ActionKind::all().size());
    QVERIFY(lines.filter(QStringLiteral("image mode=… [ms=…]")).size() == 1);
}

void TestAction::documentNamesEveryActionWithItsArguments()
{
    const QStringList documentedZone { QStringLiteral("zone") };
    QStringList documented;
    bool takesZone = false; // "From play to ungroup"
    const QList<QStringList> rows = markdownTable(
        QStringLiteral(TOUCHUI_CHECKOUT "/docs/scenarios.md"), QStringLiteral("Action"));
    for (const QStringList &row : rows.mid(1)) {
        QCOMPARE(row.size(), 3);
        for (const QString &name : codes(row.at(0))) {
            documented.append(name);
            if (name == QLatin1String("repeat"))
                continue; // the scenario's own
            const ActionKind *const kind = ActionKind::find(name);
            QVERIFY2(kind, qPrintable(name));
            takesZone = takesZone || name == QLatin1String("play");
            QStringList arguments;
            for (const ActionArgument &argument : kind->arguments)
                arguments.append(QString::fromLatin1(argument.name));
            QCOMPARE(arguments, (takesZone ? documentedZone : QStringList()) + codes(row.at(1)));
            takesZone = takesZone && name != QLatin1String("ungroup");
        }
    }
    QStringList known { QStringLiteral("repeat") };
    for (const ActionKind &kind : ActionKind::all())
        known.append(QString::fromLatin1(kind.name));
    documented.sort();
    known.sort();
    QCOMPARE(documented, known);
}

QTEST_GUILESS_MAIN(TestAction)
#include "tst_action.moc"
