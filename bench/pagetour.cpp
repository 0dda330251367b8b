// SPDX-License-Identifier: GPL-3.0-or-later
#include "pagetour.h"

#include "eventwait.h"
#include "playingzone.h"
#include "simulator/services/topics.h"
#include "subject.h"
#include "testkit/pagenames.h"

PageTour::PageTour(
    BrokerClient &services, PlayingZone &zone, const Display &display, SwitchTimes &times)
    : m_services(services)
    , m_zone(zone)
    , m_times(times)
{
    Subject::prepareProbedProgram(m_program, Subject::OpenGl, display);
    m_pipe.prepare(m_program, FramePipe::Pictures);
}

bool PageTour::takeAll()
{
    using namespace PageNames;
    return begin(true) && go("welcome to player", Player, [this] { return waitForWelcomeToEnd(); })
        && touch("player to settings", "settingsCorner", Settings)
        && touch("settings to player", "title", Player) && touch("player to clock", "cover", Clock)
        && touch("clock to screen saver", "Clock", ScreenSaver)
        && touch("screen saver to player", "ScreenSaver", Player)
        && findCore(false, "player to connection failure", Failure)
        && findCore(true, "connection failure to player", Player) && loseZone()
        && go("zone not found to player", Player,
            [this] {
                m_decision = MonotonicClock::now();
                return m_zone.publish(m_services);
            })
        && publish("player to update", Topics::state("UpdateInstalling"), "true", Update)
        && m_program.stop();
}

bool PageTour::takeFoundCore()
{
    return begin(false)
        && go("welcome to connection failure", PageNames::Failure,
            [this] { return waitForWelcomeToEnd(); })
        && findCore(true, "connection failure to player, for the first time", PageNames::Player)
        && m_program.stop();
}

bool PageTour::begin(bool coreFound)
{
    m_services.publish(Topics::state("UpdateInstalling"), "false", true);
    if (!m_zone.publish(m_services))
        return false;
    m_services.publish(Topics::core("coreDetected"), coreFound ? "true" : "false", true);
    if (!m_services.flush() || !m_program.startAndWait() || !m_pipe.waitUntilAtRest())
        return false;
    m_picture = m_pipe.frames().last().picture;
    return true;
}

/** The program tells by a line of its log that it goes to another page. */
bool PageTour::waitForWelcomeToEnd()
{
    const LogPattern line = Line::info(QStringLiteral("ScreenController::setDefaultBrightness()"));
    const int start = m_program.logSize();
    const bool ended = waitForEvent([&] { return m_program.position(line, start) >= 0; });
    m_decision = MonotonicClock::now();
    return ended;
}

bool PageTour::touch(const char *name, const char *item, const QString &page)
{
    return go(name, page, [&] {
        const bool touched = m_program.probe().tap(item);
        m_decision = m_program.probe().lastTouch();
        return touched;
    });
}

bool PageTour::publish(
    const char *name, const QString &topic, const QByteArray &payload, const QString &page)
{
    return go(name, page, [&] {
        m_decision = MonotonicClock::now();
        m_services.publish(topic, payload, true);
        return true;
    });
}

bool PageTour::findCore(bool found, const char *name, const QString &page)
{
    return publish(name, Topics::core("coreDetected"), found ? "true" : "false", page);
}

/** The zone that is missing from the list is missed when something else is heard of the core. */
bool PageTour::loseZone()
{
    m_services.publish(Topics::availableZones(), R"([{"id":"other","name":"Bath"}])", true);
    return m_services.flush() && findCore(true, "player to zone not found", PageNames::NotFound);
}

bool PageTour::go(const char *name, const QString &page, const std::function<bool()> &decide)
{
    FrameRecords &frames = m_pipe.frames();
    frames.clear();
    if (!decide() || !m_pipe.waitUntilAtRest() || !m_program.waitForPage(page)) {
        qWarning("%s: the page does not come", name);
        return false;
    }
    const MonotonicClock::time_point complete = frames.complete().time;
    const MonotonicClock::time_point left = frames.firstOtherThan(m_picture).time;
    m_times.add(QString::fromLatin1(name),
        { inMilliseconds(complete - m_decision), inMilliseconds(complete - left) });
    m_picture = frames.last().picture;
    return true;
}
