// SPDX-License-Identifier: GPL-3.0-or-later
.pragma library

/** The volume with the given number of decimals; empty for a value that is no number. */
function volume(value, decimals) {
    return isFinite(value) ? value.toFixed(decimals) : "";
}
