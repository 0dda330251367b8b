// SPDX-License-Identifier: GPL-3.0-or-later
#include "pageswitches.h"

#include "pagetour.h"
#include "playingzone.h"
#include "report.h"
#include "simulator/services/topics.h"

namespace {

constexpr int Rounds = 5;
constexpr double GoalMs = 100;
constexpr double FirstSwitchGoal = 2;

bool takeTours(
    BrokerClient &services, PlayingZone &zone, const Display &display, SwitchTimes &times)
{
    for (int i = 0; i < Rounds; ++i) {
        if (!PageTour(services, zone, display, times).takeAll()
            || !PageTour(services, zone, display, times).takeFoundCore())
            return false;
    }
    return true;
}

} // namespace

bool measurePageSwitches(
    BrokerClient &services, PlayingZone &zone, const Display &display, Report &report)
{
    SwitchTimes times;
    const bool taken = takeTours(services, zone, display, times);
    services.publish(Topics::state("UpdateInstalling"), "false", true);
    if (!services.flush() || !taken)
        return false;
    const QString unit = QStringLiteral("ms");
    const QStringList names = times.names();
    for (const QString &name : names) {
        report.addLimited(name, unit, times.median(name).untilComplete, GoalMs);
        report.addFigure(
            QStringLiteral("  of it, neither page shown"), unit, times.median(name).neitherShown);
    }
    const QString later = QStringLiteral("connection failure to player");
    report.addRatio(QStringLiteral("the first time against later"), unit,
        times.median(later + QStringLiteral(", for the first time")).untilComplete,
        times.median(later).untilComplete, Report::AtMost, FirstSwitchGoal);
    return true;
}
