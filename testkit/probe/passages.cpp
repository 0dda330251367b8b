// SPDX-License-Identifier: GPL-3.0-or-later
#include "testkit/probe/passages.h"

#include "testkit/probe/animationclock.h"

#include <QQuickItem>
#include <QVector>

namespace {

constexpr int FirstLookMs = 50;      // who has not moved by then stands still
constexpr int LongestLookMs = 40000; // two passages of the slowest label, and a little more

/** One item, watched. */
class Track {
public:
    explicit Track(const QQuickItem *item)
        : m_item(item)
        , m_x(item->x())
        , m_lowest(m_x)
        , m_highest(m_x)
    {
    }

    const QQuickItem *item() const { return m_item; }
    bool hasMoved() const { return m_lowest < m_highest; }
    bool isComplete() const { return m_end > 0; }

    void look(int now)
    {
        const qreal x = m_item->x();
        // Passages run to the left, so a step to the right begins the next one.
        if (x > m_x && !isComplete()) {
            if (m_begin == 0) {
                m_begin = now;
                m_from = x;
            } else {
                m_end = now;
                m_to = m_x;
            }
        }
        m_x = x;
        m_lowest = qMin(m_lowest, x);
        m_highest = qMax(m_highest, x);
    }

    QJsonObject passage() const
    {
        if (!isComplete())
            return { { QStringLiteral("lowest"), m_lowest },
                { QStringLiteral("highest"), m_highest } };
        return { { QStringLiteral("from"), m_from }, { QStringLiteral("to"), m_to },
            { QStringLiteral("duration"), m_end - m_begin } };
    }

private:
    const QQuickItem *m_item;
    qreal m_x;
    qreal m_lowest;
    qreal m_highest;
    int m_begin = 0;
    int m_end = 0;
    qreal m_from = 0;
    qreal m_to = 0;
};

} // namespace

Passages::Passages(const QList<QQuickItem *> &items)
{
    AnimationClock clock;
    // The first step is a longer one: it makes up for the time since the last frame.
    clock.pass(1);
    QVector<Track> tracks;
    for (const QQuickItem *item : items)
        tracks.append(Track(item));

    int now = 0;
    const auto lookUntil = [&](int end, const auto &enough) {
        while (now < end && !enough()) {
            clock.pass(1);
            ++now;
            for (Track &track : tracks)
                track.look(now);
        }
    };
    lookUntil(FirstLookMs, [] { return false; });
    tracks.erase(std::remove_if(tracks.begin(), tracks.end(),
                     [](const Track &track) { return !track.hasMoved(); }),
        tracks.end());
    lookUntil(LongestLookMs, [&tracks] {
        return std::all_of(
            tracks.begin(), tracks.end(), [](const Track &track) { return track.isComplete(); });
    });
    for (const Track &track : qAsConst(tracks))
        m_passages.insert(track.item(), track.passage());
}
