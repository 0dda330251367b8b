// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

/**
 * Stores @p value in @p field. Returns whether that changed the field, so that setters notify only
 * then. A NaN counts as a change each time, since it equals nothing.
 */
template <typename T> bool storeIfChanged(T &field, const T &value)
{
    if (field == value)
        return false;
    field = value;
    return true;
}
