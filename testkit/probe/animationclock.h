// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QAnimationDriver>
#include <QVariantAnimation>

/**
 * The clock of the scene's animations and QML timers, put forward by hand while the real one stands
 * still.  It holds as long as the object lives.  What a timer does when it is over happens later,
 * from the event loop.
 */
class AnimationClock : public QAnimationDriver {
    Q_OBJECT

public:
    AnimationClock();
    ~AnimationClock() override;

    /** Puts the clock forward. */
    void pass(int milliseconds);

    qint64 elapsed() const override { return m_elapsed; }

private:
    // While there are only timers, Qt has them wait for the real clock.
    QVariantAnimation m_pulse;
    qint64 m_elapsed = 0;
};
