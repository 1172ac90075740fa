import QtQuick
import Lorvane

// What a menu or a list that opens stands on.
Rectangle {
    radius: 8
    color: LorPalette.white
    border.width: 1
    // Opaque, or what is below it would shine through.
    border.color: Qt.tint(LorPalette.white, LorPalette.outline)

    LorShadow {
        z: -1
        anchors.fill: parent
        anchors.topMargin: 4
        color: LorPalette.shadow
        blur: 10
        cornerRadius: parent.radius
    }
}
