// SPDX-License-Identifier: GPL-3.0-or-later
#include "throughput.h"

#include "eventwait.h"
#include "playingzone.h"
#include "report.h"
#include "statistics.h"
#include "stream.h"
#include "subject.h"
#include "testkit/process/processfigures.h"
#include "testkit/services/broker.h"

#include <QElapsedTimer>
#include <QJsonArray>

#include <sys/resource.h>

namespace {

constexpr int Messages = 100000;
constexpr int Rounds = 5;

struct Readings {
    QVector<double> perSecond;
    QVector<double> processorUs; // of the reader, for each message
};

/** Every message of the stream changes one of these, once. */
QJsonArray changes()
{
    return { QStringLiteral("seekPositionChanged"), QStringLiteral("volumeChanged"),
        QStringLiteral("songChanged") };
}

/** Processor time of all children that have ended, in microseconds. */
double processorUsOfEnded()
{
    rusage usage = {};
    ::getrusage(RUSAGE_CHILDREN, &usage);
    return 1e6 * static_cast<double>(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec)
        + static_cast<double>(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec);
}

double perSecond(const QElapsedTimer &time)
{
    return Messages * 1e9 / static_cast<double>(time.nsecsElapsed());
}

bool readWithReference(Broker &broker, Stream &stream, Readings &readings)
{
    const QRegularExpression subscribed(QStringLiteral("^reference 0 "));
    const int earlier = broker.lines(subscribed).size();
    const double processorUs = processorUsOfEnded();
    Process reader;
    // Ends with the last message, and never when one is lost.
    if (!reader.start(QStringLiteral("mosquitto_sub"),
            { QStringLiteral("-h"), QStringLiteral("127.0.0.1"), QStringLiteral("-i"),
                QStringLiteral("reference"), QStringLiteral("-t"),
                PlayingZone::topic(QStringLiteral("#")), QStringLiteral("-R"), QStringLiteral("-v"),
                QStringLiteral("-C"), QString::number(Messages) },
            QProcessEnvironment::systemEnvironment())) {
        qWarning("cannot start mosquitto_sub (package mosquitto-clients)");
        return false;
    }
    if (!waitForEvent([&] { return broker.lines(subscribed).size() > earlier; })) {
        qWarning("mosquitto_sub does not subscribe");
        return false;
    }
    QElapsedTimer time;
    time.start();
    stream.sendAll();
    if (!waitForEvent([&] { return !reader.isRunning(); }) || reader.exitStatus() != 0) {
        qWarning("mosquitto_sub has not received all messages");
        return false;
    }
    readings.perSecond.append(perSecond(time));
    readings.processorUs.append((processorUsOfEnded() - processorUs) / Messages);
    return true;
}

bool readWithProgram(Program &program, Stream &stream, Readings &readings)
{
    program.probe().listen(QStringLiteral("Player"), changes());
    const int start = program.logSize();
    const LogPattern end = Line::warning(
        QStringLiteral("Mqtt::processMessageApi() ignore unsupported command: end of stream"));
    const qint64 processorMs = ProcessFigures::processorMs(program.processId());
    QElapsedTimer time;
    time.start();
    stream.sendAll();
    stream.sendCommand("end of stream");
    int looked = start;
    const bool read = waitForEvent([&] {
        const bool found = program.position(end, looked) >= 0;
        looked = program.logSize();
        return found || !program.isRunning();
    });
    if (!read || !program.isRunning()) {
        qWarning("the program does not come to the end of the stream");
        return false;
    }
    readings.perSecond.append(perSecond(time));
    readings.processorUs.append(1000.0
        * static_cast<double>(ProcessFigures::processorMs(program.processId()) - processorMs)
        / Messages);
    const int heard = program.probe().heard();
    if (heard != Messages)
        qWarning("the program has taken in %d of %d messages", heard, Messages);
    return heard == Messages;
}

/** Leaves the player page, so that no scene follows the properties. */
bool showScreenSaver(Program &program, Stream &stream)
{
    // The first command leads to the clock, the second to the screen saver, which is number 14.
    stream.sendCommand("toggle_standby");
    stream.sendCommand("toggle_standby");
    return program.waitForLine(
        Line::info(QStringLiteral("NavigationController::processState() screen: 14")));
}

} // namespace

bool measureThroughput(Broker &broker, const Display &display, Report &report)
{
    Stream stream(Messages);
    Readings reference;
    Readings withoutPage;
    Readings withPage;
    if (!stream.connectToBroker())
        return false;
    for (int i = 0; i < Rounds; ++i) {
        if (!readWithReference(broker, stream, reference))
            return false;
        Program program;
        Subject::prepareProbedProgram(program, Subject::Offscreen, display);
        if (!program.startAndWait() || !Subject::showsPlayer(program)
            || !readWithProgram(program, stream, withPage) || !showScreenSaver(program, stream)
            || !readWithProgram(program, stream, withoutPage) || !program.stop())
            return false;
    }
    const QString perSecondUnit = QStringLiteral("/s");
    const QString processorUnit = QStringLiteral("us");
    report.addRatio(QStringLiteral("messages per second, %1 without loss").arg(Messages),
        perSecondUnit, median(withoutPage.perSecond), median(reference.perSecond), Report::AtLeast,
        1.0);
    report.addFigure(QStringLiteral("  processor time for one message"), processorUnit,
        median(withoutPage.processorUs), median(reference.processorUs));
    report.addRatio(QStringLiteral("messages per second, the player page following"), perSecondUnit,
        median(withPage.perSecond), median(reference.perSecond), Report::AtLeast, 0.8);
    report.addFigure(QStringLiteral("  processor time for one message, then"), processorUnit,
        median(withPage.processorUs), median(reference.processorUs));
    return true;
}
