// SPDX-License-Identifier: GPL-3.0-or-later
#include "simulator/scenario/scenarioplayer.h"

#include "simulator/house/simulatedtime.h"

ScenarioPlayer::ScenarioPlayer(const Scenario &scenario, double speed, QObject *parent)
    : QObject(parent)
    , m_scenario(scenario)
    , m_speed(speed)
{
    m_timer.setSingleShot(true);
    m_timer.setTimerType(Qt::PreciseTimer);
    connect(&m_timer, &QTimer::timeout, this, [this] {
        play(m_scenario.steps().at(m_next++));
        playDue();
        waitForNext();
    });
}

void ScenarioPlayer::prepare()
{
    playDue();
}

void ScenarioPlayer::begin()
{
    waitForNext();
}

void ScenarioPlayer::playDue()
{
    while (!isAtEnd() && m_scenario.steps().at(m_next).afterMs == 0)
        play(m_scenario.steps().at(m_next++));
}

void ScenarioPlayer::waitForNext()
{
    if (isAtEnd())
        emit finished();
    else if (m_speed > 0)
        m_timer.start(realMs(m_scenario.steps().at(m_next).afterMs, m_speed));
}

void ScenarioPlayer::play(const Scenario::Step &step)
{
    switch (step.kind) {
    case Scenario::Step::Message:
        emit message(step.topic, step.payload, step.retain);
        break;
    case Scenario::Step::Act:
        emit action(step.action);
        break;
    case Scenario::Step::Repeat:
        m_next = 0;
        break;
    }
}
