// SPDX-License-Identifier: GPL-3.0-or-later
#include "startup.h"

#include "eventwait.h"
#include "report.h"
#include "statistics.h"
#include "subject.h"
#include "testkit/services/notifysocket.h"

namespace {

constexpr int Rounds = 15;

/** Milliseconds until the program is ready; negative when it never is. */
double startOnce(Program &program)
{
    NotifySocket serviceManager;
    program.setEnvironment(QStringLiteral("NOTIFY_SOCKET"), serviceManager.path());
    QElapsedTimer time;
    time.start();
    if (!program.start() || !waitForEvent([&] { return serviceManager.count("READY=1") == 1; }))
        return -1;
    return static_cast<double>(time.nsecsElapsed()) / 1e6;
}

} // namespace

bool measureStartup(const Display &display, Report &report)
{
    for (const Subject::Platform platform : { Subject::OpenGl, Subject::Offscreen }) {
        QVector<double> ours;
        QVector<double> reference;
        for (int i = -1; i < Rounds; ++i) {
            Program bare;
            Subject::prepareBareWindow(bare, platform, display);
            const double bareMs = startOnce(bare);
            Program program;
            Subject::prepareProgram(program, platform, display);
            const double programMs = startOnce(program);
            if (bareMs < 0 || programMs < 0) {
                qWarning("a program does not get ready");
                return false;
            }
            if (i < 0) // the first time, files are read from the disk
                continue;
            reference.append(bareMs);
            ours.append(programMs);
        }
        const QString unit = QStringLiteral("ms");
        if (platform == Subject::OpenGl)
            report.addRatio(QStringLiteral("start to READY=1, OpenGL"), unit, median(ours),
                median(reference), Report::AtMost, 1.5);
        else
            report.addFigure(QStringLiteral("  the same, offscreen and software renderer"), unit,
                median(ours), median(reference));
    }
    return true;
}
