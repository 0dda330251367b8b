// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QPointF>
#include <QSize>
#include <QString>
#include <QVector>

class Program;

/**
 * A panel as it may be built into an appliance: what its screen measures, and how it is mounted.
 */
struct PanelKind {
    QString name;
    QSize screen; ///< as the panel itself counts its pixels
    QSize page;   ///< what the pages are laid out for
    bool swapped = false;
    int rotation = 0; ///< degrees; other than 0 for a panel that is mounted turned

    bool isUpright() const { return rotation == 0; }

    /** Where on the screen that place of the upright page lies. */
    QPointF onScreen(const QPointF &place) const;

    /** Before the program starts: tells it which panel it has. */
    void describeTo(Program &program) const;
    /**
     * Gives the window the size of the screen, as a turned panel's program wants it: a display
     * server without a window manager does not.  False, with a message, without a window.
     */
    bool fitWindowOf(Program &program) const;
};

/** All that the program is meant for; the first two are those of the documents. */
QVector<PanelKind> panelKinds();
