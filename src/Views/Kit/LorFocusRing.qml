import QtQuick
import Lorvane

// Where the keyboard focus is, around its parent.
Rectangle {
    property real cornerRadius: 6 // of the parent
    property int distance: 3

    anchors.fill: parent
    anchors.margins: -distance
    radius: cornerRadius + distance
    color: "transparent"
    border.width: 2
    border.color: LorPalette.focus
}
