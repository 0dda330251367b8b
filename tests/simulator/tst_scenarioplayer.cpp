// SPDX-License-Identifier: GPL-3.0-or-later
#include "simulator/scenario/scenarioplayer.h"

#include "simulator/house/simulatedtime.h"

#include <QSignalSpy>
#include <QTest>

class TestScenarioPlayer : public QObject {
    Q_OBJECT

private slots:
    void stepsWithoutTimeComeFirstAndAtOnce();
    void laterStepsComeInOrder();
    void slowestSpeedWaitsAsLongAsATimerCan();
    void timeStandsStillAtSpeedZero();
    void repeatBeginsAnew();
    void emptyScenarioIsFinishedAtOnce();

private:
    static Scenario scenario(const QByteArray &text);
    /** How many messages have come a moment after the beginning. */
    static int messagesSoon(const QByteArray &text, double speed);
};

Scenario TestScenarioPlayer::scenario(const QByteArray &text)
{
    Scenario parsed;
    QString problem;
    if (!parsed.parse(text, QStringLiteral("test"), &problem))
        QTest::qFail(qPrintable(problem), __FILE__, __LINE__);
    return parsed;
}

int TestScenarioPlayer::messagesSoon(const QByteArray &text, double speed)
{
    ScenarioPlayer player(scenario(text), speed);
    QSignalSpy messages(&player, &ScenarioPlayer::message);
    player.prepare();
    player.begin();
    QTest::qWait(50); // no more may come, so there is nothing to wait for
    return messages.count();
}

void TestScenarioPlayer::stepsWithoutTimeComeFirstAndAtOnce()
{
    ScenarioPlayer player(scenario(R"([ { "after_ms": 0, "topic": "a", "payload": "1" },
        { "after_ms": 0, "action": "play" }, { "after_ms": 1, "topic": "b", "payload": "" },
        { "after_ms": 0, "topic": "c", "payload": "" } ])"),
        1);
    QSignalSpy messages(&player, &ScenarioPlayer::message);
    int actions = 0;
    connect(&player, &ScenarioPlayer::action, this, [&actions] { ++actions; });
    player.prepare();
    QCOMPARE(messages.count(), 1);
    QCOMPARE(actions, 1);
    player.begin();
    QTRY_COMPARE(messages.count(), 3);
    QVERIFY(player.isAtEnd());
}

void TestScenarioPlayer::laterStepsComeInOrder()
{
    ScenarioPlayer player(scenario(R"([ { "after_ms": 60000, "topic": "a", "payload": "1" },
        { "after_ms": 60000, "topic": "b", "payload": "2", "retain": true } ])"),
        1000);
    QSignalSpy messages(&player, &ScenarioPlayer::message);
    QSignalSpy finished(&player, &ScenarioPlayer::finished);
    player.prepare();
    player.begin();
    QCOMPARE(messages.count(), 0);
    QTRY_COMPARE(finished.count(), 1);
    QCOMPARE(messages.at(0).at(0).toString(), QStringLiteral("a"));
    QCOMPARE(messages.at(1).at(1).toByteArray(), QByteArray("2"));
    QCOMPARE(messages.at(1).at(2).toBool(), true);
}

void TestScenarioPlayer::slowestSpeedWaitsAsLongAsATimerCan()
{
    QCOMPARE(realMs(3000, 2), 1500);
    QCOMPARE(realMs(1, 1000), 0);
    QCOMPARE(realMs(60000, 1e-5), std::numeric_limits<int>::max());
    QCOMPARE(realMs(1, 5e-324), std::numeric_limits<int>::max());
    QCOMPARE(messagesSoon(R"([ { "after_ms": 60000, "topic": "a", "payload": "1" } ])", 1e-5), 0);
}

void TestScenarioPlayer::timeStandsStillAtSpeedZero()
{
    QCOMPARE(messagesSoon(R"([ { "after_ms": 0, "topic": "a", "payload": "" },
        { "after_ms": 1, "topic": "b", "payload": "" } ])",
                 0),
        1);
}

void TestScenarioPlayer::repeatBeginsAnew()
{
    ScenarioPlayer player(scenario(R"([ { "after_ms": 0, "topic": "a", "payload": "" },
        { "after_ms": 5, "topic": "b", "payload": "" }, { "after_ms": 0, "action": "repeat" } ])"),
        1);
    QSignalSpy messages(&player, &ScenarioPlayer::message);
    player.prepare();
    player.begin();
    QTRY_VERIFY(messages.count() >= 6);
    for (int i = 0; i < 6; ++i)
        QCOMPARE(messages.at(i).at(0).toString(),
            i % 2 == 0 ? QStringLiteral("a") : QStringLiteral("b"));
    QVERIFY(!player.isAtEnd());
}

void TestScenarioPlayer::emptyScenarioIsFinishedAtOnce()
{
    ScenarioPlayer player(scenario("[]"), 1);
    QSignalSpy finished(&player, &ScenarioPlayer::finished);
    player.prepare();
    player.begin();
    QCOMPARE(finished.count(), 1);
}

QTEST_GUILESS_MAIN(TestScenarioPlayer)
#include "tst_scenarioplayer.moc"
