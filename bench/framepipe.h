// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "framerecords.h"
#include "testkit/process/program.h"

#include <QObject>
#include <QSocketNotifier>
#include <QTemporaryDir>

#include <memory>

/**
 * Receives the frames of a program that draws with OpenGL, by a library that is preloaded into it.
 * Reading each frame's picture costs the program a few milliseconds; its time alone costs nothing.
 */
class FramePipe : public QObject {
    Q_OBJECT

public:
    enum Content { Pictures, TimesOnly };

    FramePipe();
    ~FramePipe() override;

    /** To be called before the program is started. */
    void prepare(Program &program, Content content);

    FrameRecords &frames() { return m_frames; }
    /**
     * Waits until there are frames, and none has come for a time; false, with a message, when there
     * are none, or there is no end of them.
     */
    bool waitUntilAtRest();

private:
    void read();

    QTemporaryDir m_directory;
    QString m_path;
    int m_descriptor = -1;
    std::unique_ptr<QSocketNotifier> m_notifier;
    FrameRecords m_frames;
};
