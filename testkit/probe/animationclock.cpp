// SPDX-License-Identifier: GPL-3.0-or-later
#include "testkit/probe/animationclock.h"

#include <QCoreApplication>

AnimationClock::AnimationClock()
{
    install();
    m_pulse.setEndValue(1);
    m_pulse.setLoopCount(-1);
    m_pulse.start();
    // What was started in this turn of the event loop, the pulse with it, begins now.
    QCoreApplication::sendPostedEvents(nullptr, QEvent::MetaCall);
}

AnimationClock::~AnimationClock()
{
    uninstall();
}

void AnimationClock::pass(int milliseconds)
{
    m_elapsed += milliseconds;
    advance();
}
