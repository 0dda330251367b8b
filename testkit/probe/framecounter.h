// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QAtomicInt>
#include <QObject>
#include <QPointer>

class QQuickWindow;

/** Counts the frames that a window has put on the screen.  Used in the GUI thread. */
class FrameCounter : public QObject {
    Q_OBJECT

public:
    using QObject::QObject;

    /**
     * Frames of this window since the last call; 0 for the first call, with which the counting
     * begins.
     */
    int take(QQuickWindow *window);

private:
    QPointer<QQuickWindow> m_window;
    QAtomicInt m_frames = 0; // counted in the thread that renders
};
