// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick 2.15
import "."

/**
 * A line of text that runs through its box from right to left, again and again, when it is too long for it.
 * A text that fits, or may not scroll, stands still at the left edge.
 */
Item {
    id: root

    property color textColor: Theme.unsetText
    property alias bold: label.font.bold
    property alias pixelSize: label.font.pixelSize
    property alias family: label.font.family
    property string text
    /** Milliseconds that one passage takes. */
    property int scrollDuration: 200 * text.length
    property bool scrollingEnabled: true
    readonly property bool scrolling: scrollingEnabled && visible && textWidth > width
    readonly property int textWidth: Math.ceil(metrics.advanceWidth)

    /** A change of text or size begins a new passage: a running animation would keep its old end points. */
    function restart() {
        passage.stop();
        label.x = 0;
        if (scrolling)
            passage.start();
    }

    implicitHeight: label.implicitHeight
    height: implicitHeight
    clip: true
    onScrollingChanged: restart()
    onScrollDurationChanged: restart()
    onTextChanged: restart()
    onTextWidthChanged: restart()
    onWidthChanged: restart()

    PageText {
        id: label

        objectName: "label"
        anchors.verticalCenter: parent.verticalCenter
        width: root.scrolling ? root.textWidth : root.width
        color: root.textColor
        // Line breaks in a title would make it several lines high.
        text: root.text.replace(/[\r\n\u2028\u2029]+/g, " ")
        horizontalAlignment: Text.AlignLeft
        elide: root.scrolling ? Text.ElideNone : Text.ElideRight
    }

    // An elided label does not tell how wide its whole text is.
    TextMetrics {
        id: metrics

        font: label.font
        text: label.text
    }

    NumberAnimation {
        id: passage

        objectName: "passage"
        target: label
        property: "x"
        from: root.width
        to: -root.textWidth
        duration: root.scrollDuration
        loops: Animation.Infinite
    }
}
