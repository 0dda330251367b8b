// SPDX-License-Identifier: GPL-3.0-or-later
#include "testkit/probe/framecounter.h"

#include <QQuickWindow>

int FrameCounter::take(QQuickWindow *window)
{
    if (m_window != window) {
        m_window = window;
        connect(
            window, &QQuickWindow::frameSwapped, this, [this] { m_frames.ref(); },
            Qt::DirectConnection);
    }
    return m_frames.fetchAndStoreOrdered(0);
}
