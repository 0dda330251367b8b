// SPDX-License-Identifier: GPL-3.0-or-later
#include "playing.h"

#include "eventwait.h"
#include "framepipe.h"
#include "playingzone.h"
#include "report.h"
#include "simulator/services/topics.h"
#include "statistics.h"
#include "subject.h"
#include "testkit/process/processfigures.h"
#include "testkit/services/brokerclient.h"

namespace {

constexpr int Rounds = 5;
constexpr int Seconds = 20;
constexpr int SettleSeconds = 3;

/** What a program does in a second; a sample a round. */
struct Load {
    QVector<double> processorMs;
    QVector<double> frames;

    double msPerSecond() const { return median(processorMs); }
    double framesPerSecond() const { return median(frames); }
    double msPerFrame() const { return msPerSecond() / framesPerSecond(); }
};

struct Loads {
    Load ticking;
    Load running;
    Load still;
    Load blurred;
    Load plain;
};

void sample(BrokerClient &services, const Program &program, FramePipe &pipe, Load &load)
{
    PlayingZone::play(services, SettleSeconds);
    pipe.frames().clear();
    const qint64 before = ProcessFigures::processorNs(program.processId());
    PlayingZone::play(services, Seconds);
    const qint64 after = ProcessFigures::processorNs(program.processId());
    load.processorMs.append(double(after - before) / 1e6 / Seconds);
    load.frames.append(double(pipe.frames().count()) / Seconds);
}

bool sampleBareWindow(
    BrokerClient &services, const Display &display, Subject::Motion motion, Load &load)
{
    Program bare;
    FramePipe pipe;
    Subject::prepareBareWindow(bare, Subject::OpenGl, display, motion);
    pipe.prepare(bare, FramePipe::TimesOnly);
    if (!bare.start() || !waitForEvent([&] { return !pipe.frames().isEmpty(); })) {
        qWarning("the bare window draws nothing");
        return false;
    }
    sample(services, bare, pipe, load);
    return true;
}

bool sampleProgram(BrokerClient &services, const Display &display, Loads &loads)
{
    Program program;
    FramePipe pipe;
    Subject::prepareProgram(program, Subject::OpenGl, display);
    pipe.prepare(program, FramePipe::TimesOnly);
    const auto publish = [&](const QString &topic, const QByteArray &payload) {
        services.publish(topic, payload, true);
    };
    const QString title = PlayingZone::topic(QStringLiteral("nowPlaying/song"));
    const QString blur = Topics::settings("touchscreen_show_blur_image");
    publish(title, "Open Window");
    if (!services.flush() || !program.startAndWait() || !Subject::showsPlayer(program))
        return false;
    sample(services, program, pipe, loads.still);
    publish(title, "Open Window, and all that is to be heard through it on a long summer evening");
    sample(services, program, pipe, loads.blurred);
    publish(blur, "false");
    sample(services, program, pipe, loads.plain);
    publish(blur, "true");
    return program.stop();
}

} // namespace

bool measurePlaying(BrokerClient &services, const Display &display, Report &report)
{
    Loads loads;
    for (int i = 0; i < Rounds; ++i) {
        if (!sampleBareWindow(services, display, Subject::Ticking, loads.ticking)
            || !sampleBareWindow(services, display, Subject::Running, loads.running)
            || !sampleProgram(services, display, loads))
            return false;
    }
    const QString perSecond = QStringLiteral("ms");
    const QString frames = QStringLiteral("/s");
    report.addRatio(QStringLiteral("processor time for a second, the title still"), perSecond,
        loads.still.msPerSecond(), loads.ticking.msPerSecond(), Report::AtMost, 1.2);
    report.addFigure(QStringLiteral("  frames"), frames, loads.still.framesPerSecond(),
        loads.ticking.framesPerSecond());
    report.addRatio(QStringLiteral("processor time for a frame, the title running"), perSecond,
        loads.blurred.msPerFrame(), loads.running.msPerFrame(), Report::AtMost, 1.2);
    report.addFigure(QStringLiteral("  frames"), frames, loads.blurred.framesPerSecond(),
        loads.running.framesPerSecond());
    report.addRatio(QStringLiteral("the same with blur against without"), perSecond,
        loads.blurred.msPerFrame(), loads.plain.msPerFrame(), Report::AtMost, 1.1);
    report.addFigure(QStringLiteral("processor time for a second, the title running"), perSecond,
        loads.blurred.msPerSecond(), loads.running.msPerSecond());
    return true;
}
