// SPDX-License-Identifier: GPL-3.0-or-later
#include "testkit/coverview.h"

#include "testkit/likeness.h"

#include <QMarginsF>

namespace {

/** JPEG does not keep a colour exactly. */
bool alike(const QColor &one, const QColor &other)
{
    return qAbs(one.red() - other.red()) < 16 && qAbs(one.green() - other.green()) < 16
        && qAbs(one.blue() - other.blue()) < 16;
}

} // namespace

QRectF CoverView::area(Probe &probe)
{
    return probe.area("cover") - QMarginsF(4, 4, 4, 4);
}

bool CoverView::shows(Probe &probe, const QColor &colour)
{
    const QPoint place = area(probe).topLeft().toPoint() + QPoint(20, 20);
    const QImage page = probe.picture();
    return page.valid(place) && alike(page.pixelColor(place), colour);
}

bool CoverView::showsLogo(Probe &probe)
{
    const QString logo = QStringLiteral("images/Velunor_logo_v020-07.png");
    return drawnFile(probe.picture(), area(probe), { logo }) == logo;
}
