// SPDX-License-Identifier: GPL-3.0-or-later
#include "idle.h"

#include "eventwait.h"
#include "playingzone.h"
#include "report.h"
#include "subject.h"
#include "testkit/pagenames.h"
#include "testkit/process/processfigures.h"
#include "testkit/services/brokerclient.h"

#include <cmath>

namespace {

constexpr int IdleSeconds = 60;
constexpr int AnswerMs = 100; // until the program sleeps again after it has answered
constexpr double WatchdogSeconds = 2.8;
constexpr int KeepAliveSeconds = 60;
constexpr int KeepAliveWakeUps = 4;   // two looks at what has come, the ping, its answer
constexpr int HandOversOfAFrame = 20; // drawing goes from thread to thread, and back
constexpr int FetchSeconds = 35;      // until Qt closes what the cover was fetched by

using Switches = QMap<QString, qint64>;

/** What a page that stands may do of its own accord. */
struct Page {
    QString name;
    int framesPerMinute;
    int ticksPerSecond;
};

/** Wake-ups that are bound to be. */
double explained(const Page &page)
{
    return std::ceil(IdleSeconds / WatchdogSeconds)
        + KeepAliveWakeUps * std::ceil(double(IdleSeconds) / KeepAliveSeconds)
        + double(page.ticksPerSecond) * IdleSeconds
        + double(page.framesPerMinute) * HandOversOfAFrame;
}

/** All threads' together; those of a thread that has ended meanwhile are not known. */
qint64 wakeUps(const Switches &before, const Switches &after)
{
    qint64 sum = 0;
    for (auto thread = after.begin(); thread != after.end(); ++thread)
        sum += thread.value() - before.value(thread.key());
    return sum;
}

bool measurePage(Program &program, const Page &page, Report &report)
{
    const qint64 process = program.processId();
    if (!ProcessFigures::waitUntilAtRest(process)) {
        qWarning("the program does not come to rest");
        return false;
    }
    program.probe().frames();
    serveEvents(AnswerMs);
    const Switches switches = ProcessFigures::voluntarySwitches(process);
    const qint64 processorNs = ProcessFigures::processorNs(process);
    serveEvents(IdleSeconds * 1000);
    const Switches switchesAfter = ProcessFigures::voluntarySwitches(process);
    const qint64 processorNsAfter = ProcessFigures::processorNs(process);
    const int frames = program.probe().frames();

    const QString what = QStringLiteral("%1 for %2 s: %3").arg(page.name).arg(IdleSeconds);
    report.addLimited(what.arg(QStringLiteral("frames drawn")), QString(), frames,
        page.framesPerMinute * IdleSeconds / 60.0);
    report.addLimited(what.arg(QStringLiteral("wake-ups")), QString(),
        double(wakeUps(switches, switchesAfter)), explained(page));
    report.addFigure(what.arg(QStringLiteral("processor time")), QStringLiteral("ms"),
        double(processorNsAfter - processorNs) / 1e6);
    return true;
}

} // namespace

bool measureIdle(BrokerClient &services, const Display &display, Report &report)
{
    services.publish(PlayingZone::topic(QStringLiteral("state")), "paused", true);
    if (!services.flush())
        return false;
    Program program;
    Subject::prepareProbedProgram(program, Subject::OpenGl, display);
    if (!program.startAndWait() || !Subject::showsPlayer(program))
        return false;
    serveEvents(FetchSeconds * 1000);
    return measurePage(program, { QStringLiteral("paused"), 0, 0 }, report)
        && program.probe().tap("cover") && program.waitForPage(PageNames::Clock)
        && measurePage(program, { QStringLiteral("clock"), 1, 1 }, report)
        && program.probe().tap("Clock") && program.waitForPage(PageNames::ScreenSaver)
        && measurePage(program, { QStringLiteral("black"), 0, 0 }, report) && program.stop();
}
