// SPDX-License-Identifier: GPL-3.0-or-later
#include "memory.h"

#include "eventwait.h"
#include "playingzone.h"
#include "testkit/process/processfigures.h"
#include "report.h"
#include "statistics.h"
#include "subject.h"
#include "testkit/services/brokerclient.h"
#include "testkit/services/notifysocket.h"

namespace {

constexpr int Rounds = 3;
constexpr int SecondsPlayed = 3;

/** PSS in MiB, once the program has nothing more to do; negative when that never comes. */
double sizeAtRest(const Program &program)
{
    if (!ProcessFigures::waitUntilAtRest(program.processId())) {
        qWarning("a program does not come to rest");
        return -1;
    }
    return static_cast<double>(ProcessFigures::pssKiB(program.processId())) / 1024;
}

double sizeOfBareWindow(Subject::Platform platform, const Display &display)
{
    NotifySocket serviceManager;
    Program bare;
    Subject::prepareBareWindow(bare, platform, display);
    bare.setEnvironment(QStringLiteral("NOTIFY_SOCKET"), serviceManager.path());
    if (!bare.start() || !waitForEvent([&] { return serviceManager.count("READY=1") == 1; })) {
        qWarning("the bare window does not get ready");
        return -1;
    }
    return sizeAtRest(bare);
}

double sizeOfProgram(BrokerClient &services, Subject::Platform platform, const Display &display)
{
    Program program;
    Subject::prepareProgram(program, platform, display);
    if (!program.startAndWait() || !Subject::showsPlayer(program))
        return -1;
    for (int second = 1; second <= SecondsPlayed; ++second) {
        services.publish(PlayingZone::topic(QStringLiteral("nowPlaying/seekPosition")),
            QByteArray::number(second), true);
        serveEvents(1000);
    }
    return sizeAtRest(program);
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
        const QString unit = QStringLiteral("MiB");
        if (platform == Subject::OpenGl)
            report.addRatio(QStringLiteral("memory (PSS) while playing, OpenGL"), unit,
                median(ours), median(reference), Report::AtMost, 1.5);
        else
            report.addFigure(QStringLiteral("  the same, offscreen and software renderer"), unit,
                median(ours), median(reference));
    }
    return true;
}
