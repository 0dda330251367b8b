// SPDX-License-Identifier: GPL-3.0-or-later
#include "framerecords.h"

#include <QList>

#include <algorithm>

void FrameRecords::append(const QByteArray &bytes)
{
    QList<QByteArray> lines = (m_unfinishedLine + bytes).split('\n');
    m_unfinishedLine = lines.takeLast();
    for (const QByteArray &line : qAsConst(lines)) {
        const int blank = line.indexOf(' ');
        const std::chrono::nanoseconds time(line.left(blank).toLongLong());
        m_frames.append(
            { MonotonicClock::time_point(time), line.mid(blank + 1).toULongLong(nullptr, 16) });
    }
}

void FrameRecords::clear()
{
    m_frames.clear();
}

const Frame &FrameRecords::complete() const
{
    const quint64 picture = last().picture;
    const auto otherBefore = std::find_if(m_frames.crbegin(), m_frames.crend(),
        [picture](const Frame &frame) { return frame.picture != picture; });
    return *otherBefore.base();
}

const Frame &FrameRecords::firstOtherThan(quint64 picture) const
{
    const auto other = std::find_if(m_frames.cbegin(), m_frames.cend(),
        [picture](const Frame &frame) { return frame.picture != picture; });
    return other == m_frames.cend() ? last() : *other;
}
