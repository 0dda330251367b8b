// SPDX-License-Identifier: GPL-3.0-or-later
#include "testkit/machine/panelkind.h"

#include "testkit/process/program.h"

namespace {

QString trueOrFalse(bool value)
{
    return value ? QStringLiteral("true") : QStringLiteral("false");
}

} // namespace

QPointF PanelKind::onScreen(const QPointF &place) const
{
    switch (rotation) {
    case 90:
        return { screen.width() - place.y(), place.x() };
    case 180:
        return { screen.width() - place.x(), screen.height() - place.y() };
    case 270:
        return { place.y(), screen.height() - place.x() };
    default:
        return place;
    }
}

void PanelKind::describeTo(Program &program) const
{
    program.setEnvironment(QStringLiteral("VELUNOR_TOUCHUI_WIDTH"), QString::number(page.width()));
    program.setEnvironment(
        QStringLiteral("VELUNOR_TOUCHUI_HEIGHT"), QString::number(page.height()));
    program.setEnvironment(QStringLiteral("VELUNOR_TOUCHUI_SWAPPED"), trueOrFalse(swapped));
    program.setEnvironment(QStringLiteral("VELUNOR_TOUCHUI_ROTATED"), trueOrFalse(!isUpright()));
    program.setEnvironment(QStringLiteral("VELUNOR_TOUCHUI_ROTATION"), QString::number(rotation));
}

bool PanelKind::fitWindowOf(Program &program) const
{
    return isUpright() || program.probe().resize(screen);
}

QVector<PanelKind> panelKinds()
{
    const QSize small(800, 480);
    const QSize large(1280, 800);
    const QSize wide(1280, 720);
    return {
        { QStringLiteral("800x480"), small, small },
        { QStringLiteral("1280x800"), large, large },
        { QStringLiteral("1280x720"), wide, wide },
        { QStringLiteral("800x480-upside-down"), small, small, false, 180 },
        { QStringLiteral("480x800-turned-90"), small.transposed(), small, true, 90 },
        { QStringLiteral("480x800-turned-270"), small.transposed(), small, true, 270 },
        { QStringLiteral("720x1280-turned-90"), wide.transposed(), wide, true, 90 },
        { QStringLiteral("720x1280-turned-270"), wide.transposed(), wide, true, 270 },
    };
}
