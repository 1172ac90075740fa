import QtQuick
import Lorvane
import Lorvane.Models

// A small level meter with a ragged outline.
Bars {
    required property QtObject home

    implicitHeight: 35
    spacing: 4
    duration: 120
    easing.type: Easing.OutQuad
    color: LorPalette.accent
    heights: home.barHeights
    opacities: home.barOpacities
    Accessible.role: Accessible.Graphic
    Accessible.name: "Microphone audio level"
}
