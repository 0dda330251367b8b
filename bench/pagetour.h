// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "framepipe.h"
#include "monotonicclock.h"
#include "switchtimes.h"
#include "testkit/machine/display.h"
#include "testkit/process/program.h"
#include "testkit/services/brokerclient.h"

#include <functional>

class PlayingZone;

/**
 * One run of the program on its way from page to page, each switch timed by the frames that are
 * drawn. The ways: a touch, a message, or a timer of the program's own.
 */
class PageTour {
public:
    PageTour(BrokerClient &services, PlayingZone &zone, const Display &display, SwitchTimes &times);

    /** Through all pages. False, with a message, when a page does not come; so is the next. */
    bool takeAll();
    /** Begins without a core, so that the player page comes first when the core is found. */
    bool takeFoundCore();

private:
    bool begin(bool coreFound);
    bool waitForWelcomeToEnd();
    bool touch(const char *name, const char *item, const QString &page);
    bool publish(
        const char *name, const QString &topic, const QByteArray &payload, const QString &page);
    bool go(const char *name, const QString &page, const std::function<bool()> &decide);
    bool findCore(bool found, const char *name, const QString &page);
    bool loseZone();

    BrokerClient &m_services;
    PlayingZone &m_zone;
    SwitchTimes &m_times;
    Program m_program;
    FramePipe m_pipe;
    quint64 m_picture = 0;                 // of the page on view
    MonotonicClock::time_point m_decision; // of the last switch
};
