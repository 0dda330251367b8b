// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "frame.h"

#include <QByteArray>
#include <QVector>

/**
 * The frames of a program in their order, as the frame library writes them: a line each, with the
 * time in nanoseconds of the monotonic clock and the picture as a hexadecimal number.
 *
 * A picture is at rest when no frame follows it; complete is the first frame of the last run of
 * equal ones, because what comes after it changes nothing any more.
 */
class FrameRecords {
public:
    /** Takes in what has been read, which may end within a line. */
    void append(const QByteArray &bytes);
    void clear();

    int count() const { return m_frames.size(); }
    bool isEmpty() const { return m_frames.isEmpty(); }
    /** The last frame. There must be one, as for the next function. */
    const Frame &last() const { return m_frames.last(); }
    /** The first frame that looks like the last one, and after which none looks otherwise. */
    const Frame &complete() const;
    /** The first frame that does not show this picture; the last frame when all do. */
    const Frame &firstOtherThan(quint64 picture) const;

private:
    QVector<Frame> m_frames;
    QByteArray m_unfinishedLine;
};
