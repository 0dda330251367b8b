// SPDX-License-Identifier: GPL-3.0-or-later
#include "idle.h"

#include "eventwait.h"
#include "playingzone.h"
#include "testkit/process/processfigures.h"
#include "report.h"
#include "subject.h"
#include "testkit/services/brokerclient.h"

namespace {

constexpr int IdleSeconds = 20;

} // namespace

bool measureIdle(BrokerClient &services, const Display &display, Report &report)
{
    services.publish(PlayingZone::topic(QStringLiteral("state")), "paused", true);
    if (!services.flush())
        return false;
    Program program;
    Subject::prepareProbedProgram(program, Subject::OpenGl, display);
    if (!program.startAndWait() || !Subject::showsPlayer(program)
        || !ProcessFigures::waitUntilAtRest(program.processId())) {
        qWarning("the program does not come to rest");
        return false;
    }
    const qint64 process = program.processId();
    program.probe().frames();
    const qint64 switches = ProcessFigures::voluntarySwitches(process);
    const qint64 processorMs = ProcessFigures::processorMs(process);
    serveEvents(IdleSeconds * 1000);
    const qint64 switchesAfter = ProcessFigures::voluntarySwitches(process);
    const qint64 processorMsAfter = ProcessFigures::processorMs(process);
    const int frames = program.probe().frames();

    const QString paused = QStringLiteral("paused for %1 s: ").arg(IdleSeconds);
    report.addLimited(paused + QStringLiteral("frames drawn"), QString(), frames, 0);
    report.addFigure(paused + QStringLiteral("processor time"), QStringLiteral("ms"),
        static_cast<double>(processorMsAfter - processorMs));
    report.addFigure(paused + QStringLiteral("voluntary context switches"), QString(),
        static_cast<double>(switchesAfter - switches));
    return program.stop();
}
