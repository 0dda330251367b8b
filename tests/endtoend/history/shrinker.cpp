// SPDX-License-Identifier: GPL-3.0-or-later
#include "shrinker.h"

History Shrinker::shortest(const History &history) const
{
    History shortest = history;
    // Large pieces first, since most steps have nothing to do with it.  Pieces of one step are
    // tried until none can go: what goes may make others needless.
    int piece = qMax(1, shortest.size() / 2);
    while (!shortest.isEmpty()) {
        bool dropped = false;
        // From the end, so that what a step is the answer to is still there when it is tried.
        for (int begin = shortest.size() - piece; begin > -piece; begin -= piece) {
            History shorter = shortest;
            const int from = qMax(0, begin);
            shorter.remove(from, qMin(begin + piece, shorter.size()) - from);
            if (!m_fails(shorter))
                continue;
            shortest = shorter;
            dropped = true;
        }
        if (piece == 1 && !dropped)
            break;
        piece = qMax(1, piece / 2);
    }
    return shortest;
}
