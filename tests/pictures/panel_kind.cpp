// SPDX-License-Identifier: GPL-3.0-or-later
#include "panel_kind.h"

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
