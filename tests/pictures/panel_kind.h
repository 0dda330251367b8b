// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QSize>
#include <QString>
#include <QVector>

/** A panel as it may be built into an appliance: what its screen measures, and how it is mounted.
 */
struct PanelKind {
    QString name;
    QSize screen; ///< as the panel itself counts its pixels
    QSize page;   ///< what the pages are laid out for
    bool swapped = false;
    int rotation = 0; ///< degrees; other than 0 for a panel that is mounted turned

    bool isUpright() const { return rotation == 0; }
};

/** All that the program is meant for; the first two are those of the documents. */
QVector<PanelKind> panelKinds();
