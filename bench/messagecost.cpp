// SPDX-License-Identifier: GPL-3.0-or-later
#include "messagecost.h"

#include "callgrindprofile.h"
#include "eventwait.h"
#include "report.h"
#include "streammessage.h"
#include "testkit/process/process.h"

#include <QDir>
#include <QFile>
#include <QMap>
#include <QTemporaryDir>

#include <algorithm>

namespace {

constexpr int MostMessages = 1000000;
constexpr int MostZones = 1000;
constexpr int LongestMs = 1800000;
constexpr double FlatnessGoal = 1.1;

/** Instructions of a message, by how many messages or zones there were. */
using Costs = QMap<int, double>;

bool count(const QString &directory)
{
    Process valgrind;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    // What is only done the first time is no message's cost.
    environment.insert(QStringLiteral("LD_BIND_NOW"), QStringLiteral("1"));
    const bool started = valgrind.start(QStringLiteral("valgrind"),
        { QStringLiteral("--tool=callgrind"), QStringLiteral("--instr-atstart=no"),
            QStringLiteral("--callgrind-out-file=%1/profile").arg(directory),
            QStringLiteral(TOUCHUI_MESSAGE_COST), QString::number(MostMessages),
            QString::number(MostZones) },
        environment);
    if (!started) {
        qWarning("cannot start valgrind (package valgrind)");
        return false;
    }
    if (waitForEvent([&] { return !valgrind.isRunning(); }, LongestMs)
        && valgrind.exitStatus() == 0)
        return true;
    qWarning("valgrind ends with status %d: %s", valgrind.exitStatus(),
        qPrintable(valgrind.lines().join(QLatin1Char('\n')).right(1000)));
    return false;
}

/** By the kind of count, "messages", "zones" or "others". */
QMap<QByteArray, Costs> readCosts(const QString &directory)
{
    QMap<QByteArray, Costs> costs;
    const QFileInfoList files = QDir(directory).entryInfoList(QDir::Files);
    for (const QFileInfo &info : files) {
        QFile file(info.filePath());
        if (!file.open(QIODevice::ReadOnly))
            continue;
        const CallgrindProfile profile = CallgrindProfile::parsed(file.readAll());
        const QList<QByteArray> name = profile.name.split(' ');
        if (name.size() == 2)
            costs[name.first()].insert(
                name.last().toInt(), double(profile.instructions) / StreamMessage::Window);
    }
    return costs;
}

void add(Report &report, const Costs &costs, const QString &each, const QString &flatness)
{
    for (auto cost = costs.begin(); cost != costs.end(); ++cost)
        report.addFigure(each.arg(cost.key()), QStringLiteral("instr."), cost.value());
    const auto ends = std::minmax_element(costs.begin(), costs.end());
    report.addRatio(flatness, QStringLiteral("instr."), *ends.second, *ends.first, Report::AtMost,
        FlatnessGoal);
}

} // namespace

bool measureMessageCost(Report &report)
{
    const QTemporaryDir directory;
    if (!count(directory.path()))
        return false;
    const QMap<QByteArray, Costs> costs = readCosts(directory.path());
    if (costs.size() != 3) {
        qWarning("callgrind has not written its profiles");
        return false;
    }
    add(report, costs.value("messages"), QStringLiteral("a message, after %1"),
        QStringLiteral("dearest against cheapest, by messages"));
    add(report, costs.value("zones"), QStringLiteral("a message, beside %1 zones"),
        QStringLiteral("dearest against cheapest, by zones"));
    add(report, costs.value("others"), QStringLiteral("a message of another zone, beside %1"),
        QStringLiteral("dearest against cheapest, other zones"));
    return true;
}
