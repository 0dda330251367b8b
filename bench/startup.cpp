// SPDX-License-Identifier: GPL-3.0-or-later
#include "startup.h"

#include "framepipe.h"
#include "monotonicclock.h"
#include "report.h"
#include "statistics.h"
#include "subject.h"

#include <QPair>

#include <functional>

namespace {

constexpr int Rounds = 15;
constexpr int FrameRounds = 9; // each waits for the picture to come to rest

using Start = std::function<double(Program &)>;

/** Milliseconds until the program is ready; negative when it never is. */
double untilReady(Program &program)
{
    const MonotonicClock::time_point start = MonotonicClock::now();
    return Subject::startUntilReady(program) ? inMilliseconds(MonotonicClock::now() - start) : -1;
}

/** Milliseconds until its first page stands on the screen; negative when it never does. */
double untilComplete(Program &program)
{
    FramePipe pipe;
    pipe.prepare(program, FramePipe::Pictures);
    const MonotonicClock::time_point start = MonotonicClock::now();
    if (!program.start() || !pipe.waitUntilAtRest())
        return -1;
    return inMilliseconds(pipe.frames().complete().time - start);
}

/** The medians of program and bare window, started in turns; negative when one fails. */
QPair<double, double> startInTurns(
    Subject::Platform platform, const Display &display, int rounds, const Start &startOnce)
{
    QVector<double> ours;
    QVector<double> reference;
    for (int i = -1; i < rounds; ++i) {
        Program bare;
        Subject::prepareBareWindow(bare, platform, display);
        const double bareMs = startOnce(bare);
        Program program;
        Subject::prepareProgram(program, platform, display);
        const double programMs = startOnce(program);
        if (bareMs < 0 || programMs < 0) {
            qWarning("a program does not start");
            return { -1, -1 };
        }
        if (i < 0) // the first time, files are read from the disk
            continue;
        reference.append(bareMs);
        ours.append(programMs);
    }
    return { median(ours), median(reference) };
}

} // namespace

bool measureStartup(const Display &display, Report &report)
{
    const auto ready = startInTurns(Subject::OpenGl, display, Rounds, untilReady);
    const auto complete = startInTurns(Subject::OpenGl, display, FrameRounds, untilComplete);
    const auto offscreen = startInTurns(Subject::Offscreen, display, Rounds, untilReady);
    if (ready.first < 0 || complete.first < 0 || offscreen.first < 0)
        return false;
    const QString unit = QStringLiteral("ms");
    report.addRatio(QStringLiteral("start to READY=1, OpenGL"), unit, ready.first, ready.second,
        Report::AtMost, 1.15);
    report.addRatio(QStringLiteral("start to the first complete frame, OpenGL"), unit,
        complete.first, complete.second, Report::AtMost, 1.3);
    report.addFigure(QStringLiteral("start to READY=1, offscreen and software renderer"), unit,
        offscreen.first, offscreen.second);
    return true;
}
