// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "simulator/scenario/scenario.h"

#include <QObject>
#include <QTimer>

/** Plays the steps of a scenario, each at its time. No timer runs before begin() or at the end. */
class ScenarioPlayer : public QObject {
    Q_OBJECT

public:
    /** @p speed: simulated seconds per second; at 0 only what takes no time is played. */
    ScenarioPlayer(const Scenario &scenario, double speed, QObject *parent = nullptr);

    /** Plays, at once, the steps before the first that takes time. */
    void prepare();
    /** Lets the scenario's time begin; what prepare() has played is not repeated. */
    void begin();
    bool isAtEnd() const { return m_next >= m_scenario.steps().size(); }

signals:
    void message(const QString &topic, const QByteArray &payload, bool retain);
    void action(const Action &action);
    void finished();

private:
    void playDue();
    void waitForNext();
    void play(const Scenario::Step &step);

    Scenario m_scenario;
    double m_speed;
    int m_next = 0;
    QTimer m_timer;
};
