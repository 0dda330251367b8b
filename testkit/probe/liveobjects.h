// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QList>

class QObject;

/**
 * Knows every QObject of the process that was made since recording began, so that a test can find
 * an object that hangs in no tree, and can prove that a page which was left has been destroyed.
 */
class LiveObjects {
public:
    /** Begins to record, through Qt's own hooks for object creation and destruction.  Call once. */
    static void startRecording();

    /** The recorded objects alive now that belong to the calling thread, in no particular order. */
    static QList<QObject *> ofThisThread();
};
