// SPDX-License-Identifier: GPL-3.0-or-later
.pragma library

/** The volume with the given number of decimals; empty for a value that is no number. */
function volume(value, decimals) {
    return isFinite(value) ? value.toFixed(decimals) : "";
}

/** `text` as it has to be quoted in a line of rich text, so that markup in it shows as it is. */
function escaped(text) {
    return text.replace(/&/g, "&amp;").replace(/</g, "&lt;").replace(/>/g, "&gt;").replace(/"/g, "&quot;");
}
