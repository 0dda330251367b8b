// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick 2.15
import "."
import "format.js" as Format

/**
 * A line of text that runs through its box from right to left, again and again, when it is too long for it. A text that
 * fits, or may not scroll, stands still at the left edge. A change of text, font, width or duration begins anew.
 */
Item {
    id: root

    // How the text looks. The colour, unless set, is one that stands out.
    property color textColor: Theme.unsetText
    property alias bold: label.font.bold
    property alias pixelSize: label.font.pixelSize
    property alias family: label.font.family
    /** Plain text. Line breaks are shown as blanks, and only the first 2,000 characters are shown. */
    property string text
    /** Milliseconds that one passage takes; unless set, 200 for each character. */
    property int scrollDuration: 200 * Math.min(text.length, Format.longestText)
    /** Whether a text that is too long runs; otherwise it is cut, with an ellipsis. */
    property bool scrollingEnabled: true
    /** Whether the text is running. */
    readonly property bool scrolling: scrollingEnabled && visible && whole.implicitWidth > width
    /** Pixels that the text takes, with all that its glyphs reach beyond their places in the line. */
    readonly property int textWidth: Math.ceil(whole.implicitWidth)
    /** How much of the passage is over, from 0 to 1. */
    property real passed: 0

    /** Lets a running text begin at the right edge again. */
    function beginAnew() {
        if (passage.running)
            passage.restart();
    }

    implicitHeight: label.implicitHeight
    height: implicitHeight
    clip: true
    onWidthChanged: beginAnew()

    PageText {
        id: label

        objectName: "label"
        anchors.verticalCenter: parent.verticalCenter
        // An animation of the place itself would keep the ends with which it began: those of the previous text, when a
        // change handler starts it before all bindings have followed the change.
        x: root.scrolling ? root.width - root.passed * (root.width + root.textWidth) : 0
        width: root.scrolling ? root.textWidth : root.width
        leftPadding: whole.leftPadding
        color: root.textColor
        // Line breaks in a title would make it several lines high.
        text: Format.beginning(root.text).replace(/[\r\n\u2028\u2029]+/g, " ")
        horizontalAlignment: Text.AlignLeft
        elide: root.scrolling ? Text.ElideNone : Text.ElideRight
        onTextChanged: root.beginAnew()
        onFontChanged: root.beginAnew()
    }

    // How wide the label is when nothing is cut off. The label itself cannot be asked: it would answer in the middle of
    // its layout, and what follows from the answer would cut it off, or not, and so change the answer.
    PageText {
        id: whole

        // The first glyph may reach to the left of its place, where the box would cut it.
        leftPadding: Math.max(0, -metrics.tightBoundingRect.x)
        visible: false
        font: label.font
        text: label.text
    }

    TextMetrics {
        id: metrics

        font: label.font
        text: label.text
    }

    NumberAnimation {
        id: passage

        objectName: "passage"
        target: root
        property: "passed"
        from: 0
        to: 1
        duration: root.scrollDuration
        loops: Animation.Infinite
        running: root.scrolling
        // A running animation keeps its pace.
        onDurationChanged: root.beginAnew()
    }
}
