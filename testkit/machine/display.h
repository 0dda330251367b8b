// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "testkit/process/process.h"

#include <QSize>

/** An X server without a screen, on which OpenGL is drawn by the processor. */
class Display {
public:
    /** The screen's size in pixels. */
    explicit Display(const QSize &size = QSize(800, 480));

    /** Starts it and waits until it takes clients; false, with a message, when it does not. */
    bool start();

    /** What goes into DISPLAY, once started. */
    QString name() const { return m_name; }

private:
    const QSize m_size;
    Process m_process;
    QString m_name;
};
