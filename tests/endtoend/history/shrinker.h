// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "step.h"

#include <functional>

/**
 * Finds a shortest history that still fails: one that no longer fails when any single step is
 * dropped.
 */
class Shrinker {
public:
    /** Tells whether a history fails. */
    using Trial = std::function<bool(const History &)>;

    explicit Shrinker(const Trial &fails)
        : m_fails(fails)
    {
    }

    /** The history is one that fails. */
    History shortest(const History &history) const;

private:
    Trial m_fails;
};
