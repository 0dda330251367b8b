// SPDX-License-Identifier: GPL-3.0-or-later
#include "memory.h"

#include "playingzone.h"
#include "report.h"
#include "statistics.h"
#include "subject.h"
#include "testkit/process/processfigures.h"
#include "testkit/services/brokerclient.h"

namespace {

constexpr int Rounds = 5;
constexpr int SecondsPlayed = 3;

/**
 * MiB, once the program has nothing more to do; negative when that never comes. With OpenGL it is
 * PSS, in which the program pays its share of the driver; offscreen, what is its alone.
 */
double sizeAtRest(const Program &program, Subject::Platform platform)
{
    if (!ProcessFigures::waitUntilAtRest(program.processId())) {
        qWarning("a program does not come to rest");
        return -1;
    }
    const qint64 process = program.processId();
    return static_cast<double>(platform == Subject::OpenGl ? ProcessFigures::pssKiB(process)
                                                           : ProcessFigures::privateKiB(process))
        / 1024;
}

double sizeOfBareWindow(Subject::Platform platform, const Display &display)
{
    Program bare;
    Subject::prepareBareWindow(bare, platform, display);
    if (!Subject::startUntilReady(bare)) {
        qWarning("the bare window does not get ready");
        return -1;
    }
    return sizeAtRest(bare, platform);
}

double sizeOfProgram(BrokerClient &services, Subject::Platform platform, const Display &display)
{
    Program program;
    Subject::prepareProgram(program, platform, display);
    if (!program.startAndWait() || !Subject::showsPlayer(program))
        return -1;
    PlayingZone::play(services, SecondsPlayed);
    return sizeAtRest(program, platform);
}

} // namespace

bool measureMemory(BrokerClient &services, const Display &display, Report &report)
{
    for (const Subject::Platform platform : { Subject::OpenGl, Subject::Offscreen }) {
        QVector<double> ours;
        QVector<double> reference;
        for (int i = 0; i < Rounds; ++i) {
            reference.append(sizeOfBareWindow(platform, display));
            ours.append(sizeOfProgram(services, platform, display));
            if (reference.last() < 0 || ours.last() < 0)
                return false;
        }
        const bool isDrawn = platform == Subject::OpenGl;
        report.addRatio(isDrawn ? QStringLiteral("memory (PSS) while playing, OpenGL")
                                : QStringLiteral("private memory while playing, offscreen"),
            QStringLiteral("MiB"), median(ours), median(reference), Report::AtMost,
            isDrawn ? 1.2 : 1.5);
    }
    return true;
}
