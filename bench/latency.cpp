// SPDX-License-Identifier: GPL-3.0-or-later
#include "latency.h"

#include "eventwait.h"
#include "monotonicclock.h"
#include "playingzone.h"
#include "report.h"
#include "statistics.h"
#include "subject.h"
#include "testkit/services/brokerclient.h"

#include <QJsonArray>

namespace {

constexpr int Samples = 300;
constexpr int DistanceMs = 50; // between two samples, so that each meets a program at rest
constexpr double FrameMs = 1000.0 / 60;
/** In frames. A message may just miss one, and then waits for it and the frame itself. */
constexpr double TouchGoal = 1;
constexpr double PictureGoal = 2;

void add(Report &report, const QString &what, const QVector<double> &samples, double goal)
{
    const QString unit = QStringLiteral("ms");
    report.addRatio(
        what + QStringLiteral(", median"), unit, median(samples), FrameMs, Report::AtMost, goal);
    report.addRatio(what + QStringLiteral(", p99"), unit, quantile(samples, 0.99), FrameMs,
        Report::AtMost, goal);
}

bool measureTouches(BrokerClient &services, Program &program, Report &report)
{
    const QPointF button = program.probe().centre("playPause");
    QVector<double> samples;
    for (int i = 0; i < Samples; ++i) {
        serveEvents(DistanceMs);
        services.clear();
        // The command goes out when the finger leaves.
        if (!program.probe().press(button) || !program.probe().release(button))
            return false;
        if (!waitForEvent([&] { return !services.messages().isEmpty(); })) {
            qWarning("a touch has not become a command");
            return false;
        }
        samples.append(
            inMilliseconds(services.messages().first().arrival - program.probe().lastTouch()));
    }
    add(report, QStringLiteral("touch to command at the broker"), samples, TouchGoal);
    return true;
}

bool measurePictures(BrokerClient &services, Program &program, Report &report)
{
    program.probe().watch("seekPosition", QStringLiteral("text"));
    QMap<QString, MonotonicClock::time_point> published;
    for (int i = 0; i < Samples; ++i) {
        serveEvents(DistanceMs);
        const int seconds = 10 + i;
        const QString text
            = QStringLiteral("%1:%2").arg(seconds / 60).arg(seconds % 60, 2, 10, QLatin1Char('0'));
        published.insert(text, MonotonicClock::now());
        services.publish(PlayingZone::topic(QStringLiteral("nowPlaying/seekPosition")),
            QByteArray::number(seconds), true);
    }
    serveEvents(1000);
    const QMap<QString, MonotonicClock::time_point> seen = program.probe().seen();
    QVector<double> samples;
    for (auto message = published.cbegin(); message != published.cend(); ++message) {
        if (!seen.contains(message.key())) {
            qWarning("the message %s was not shown", qPrintable(message.key()));
            return false;
        }
        samples.append(inMilliseconds(seen.value(message.key()) - message.value()));
    }
    add(report, QStringLiteral("message to picture"), samples, PictureGoal);
    return true;
}

} // namespace

bool measureLatency(BrokerClient &services, const Display &display, Report &report)
{
    Program program;
    Subject::prepareProbedProgram(program, Subject::OpenGl, display);
    return program.startAndWait() && Subject::showsPlayer(program)
        && measureTouches(services, program, report) && measurePictures(services, program, report)
        && program.stop();
}
