pragma Singleton
import QtQuick
import Lorvane.Models

// The colours of the design. Texts and lines are darker for who has asked for more contrast.
QtObject {
    readonly property Contrast contrast: Contrast {}
    readonly property bool isHigh: contrast.isHigh

    readonly property color canvas: Qt.rgba(0.97, 0.96, 0.94, 1)
    readonly property color sidebar: Qt.rgba(0.94, 0.93, 0.90, 1)
    readonly property color ink: isHigh ? "black" : Qt.rgba(0.15, 0.18, 0.17, 1)
    readonly property color muted: isHigh ? "#333533" : Qt.rgba(0.44, 0.46, 0.43, 1)
    readonly property color accent: isHigh ? "#8f2408" : Qt.rgba(0.83, 0.29, 0.13, 1)
    readonly property color line: Qt.rgba(0, 0, 0, isHigh ? 0.6 : 0.08)

    // What stands on the accent, and what is written into.
    readonly property color white: "white"

    // White over the canvas and over the sidebar.
    readonly property color card: over(canvas, 0.88)
    readonly property color panel: over(canvas, 0.9)
    readonly property color selectedPage: over(sidebar, 0.9)
    readonly property color status: over(sidebar, 0.5)

    readonly property color pressedAccent: translucent(accent, 0.75)
    readonly property color placeholder: translucent(muted, 0.7)

    // Around controls, and around the one that has the keyboard focus.
    readonly property color outline: Qt.rgba(0, 0, 0, isHigh ? 0.8 : 0.15)
    readonly property color focus: translucent(accent, isHigh ? 1 : 0.6)
    // Below what opens above a page.
    readonly property color shadow: Qt.rgba(0, 0, 0, 0.2)
    // A switch that is off.
    readonly property color track: Qt.rgba(0, 0, 0, isHigh ? 0.6 : 0.18)
    readonly property real disabledOpacity: 0.5

    // What the design calls standard: GNOME's, which small texts can be read in on the canvas.
    readonly property color red: isHigh ? "#8a0f18" : "#c01c28"
    readonly property color orange: "#e66100"
    readonly property color green: isHigh ? "#0b5a35" : "#1b8553"
    readonly property color blue: "#1c71d8"

    function translucent(color: color, opacity: real): color {
        return Qt.rgba(color.r, color.g, color.b, opacity);
    }

    // As an opaque colour, for to blend a large area costs several times a fill.
    function over(ground: color, opacity: real): color {
        const blend = component => opacity + (1 - opacity) * component;
        return Qt.rgba(blend(ground.r), blend(ground.g), blend(ground.b), 1);
    }
}
