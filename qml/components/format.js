// SPDX-License-Identifier: GPL-3.0-or-later
.pragma library

/** The volume with the given number of decimals; empty for a value that is no number. */
function volume(value, decimals) {
    return isFinite(value) ? value.toFixed(decimals) : "";
}

// A volume command carries one decimal. Volumes are single floats: 80.1 arrives as 80.09999847, and is meant as 80.1.

/** The number of one decimal that is nearest to `value`. */
function tenth(value) {
    return Math.round(10 * value) / 10 + 0; // the 0 makes -0 a 0
}

/** The highest number of one decimal that does not pass `limit`. */
function tenthNotAbove(limit) {
    const nearest = tenth(limit);
    return Math.fround(nearest) > Math.fround(limit) ? tenth(nearest - 0.1) : nearest;
}

/** The lowest number of one decimal that is not below `limit`. */
function tenthNotBelow(limit) {
    const nearest = tenth(limit);
    return Math.fround(nearest) < Math.fround(limit) ? tenth(nearest + 0.1) : nearest;
}

/** `text` as it has to be quoted in a line of rich text, so that markup in it shows as it is. */
function escaped(text) {
    return text.replace(/&/g, "&amp;").replace(/</g, "&lt;").replace(/>/g, "&gt;").replace(/"/g, "&quot;");
}

/** Characters; only this much of a longer text is laid out, as a megabyte would take more than a second. */
const longestText = 2000;

/** The beginning of `text` that is laid out; a character that takes two places is not cut in the middle. */
function beginning(text) {
    if (text.length <= longestText)
        return text;
    const last = text.charCodeAt(longestText - 1);
    return text.substring(0, last >= 0xd800 && last < 0xdc00 ? longestText - 1 : longestText);
}
