// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick 2.15
import "."

/** Radio, shuffle and loop, each blue while it is on. */
LayoutBox {
    id: root

    // What is on. For the loop only "disabled" counts as off; "loop_one" shows a "1" as well.
    property bool autoRadio: false
    property bool shuffle: false
    property string loop
    /** Hides the icons alone; the cells go on answering taps. */
    property bool iconsVisible: true

    // A tap on one of the cells. It changes nothing here.
    signal radioTouched()
    signal shuffleTouched()
    signal loopTouched()

    // Deliberate: the cells answer taps even while their icons are hidden.
    Row {
        anchors.fill: parent

        OptionButton {
            objectName: "radio"
            outlined: root.outlined
            iconVisible: root.iconsVisible
            source: root.autoRadio ? "../../icons/ic_radio_blue_48dp.png" : "../../icons/ic_radio_white_48dp.png"
            // Deliberate: only this cell reaches beyond its edges.
            touchMargin: Theme.touchMargin
            onTouched: root.radioTouched()
        }

        OptionButton {
            objectName: "shuffle"
            outlined: root.outlined
            iconVisible: root.iconsVisible
            source: root.shuffle ? "../../icons/ic_shuffle_blue_48dp.png" : "../../icons/ic_shuffle_white_48dp.png"
            onTouched: root.shuffleTouched()
        }

        OptionButton {
            objectName: "loop"
            outlined: root.outlined
            iconVisible: root.iconsVisible
            source: root.loop === "disabled" ? "../../icons/ic_loop_white_48dp.png" : "../../icons/ic_loop_blue_48dp.png"
            onTouched: root.loopTouched()

            PageText {
                objectName: "loopOne"
                x: 0.25 * parent.height
                y: 0.2 * parent.height
                visible: root.iconsVisible && root.loop === "loop_one"
                color: Theme.accent
                font.pixelSize: parent.height / 4
                text: "1"
            }
        }
    }
}
