import QtQuick
import Lorvane

// The keys of the shortcut. They can't be changed.
Rectangle {
    implicitWidth: keys.implicitWidth + 24
    implicitHeight: keys.implicitHeight + 18
    radius: 8
    color: LorPalette.canvas

    LorText {
        id: keys

        anchors.centerIn: parent
        text: "⌃  ⌥  Space"
        font.family: LorFonts.monospaced
        font.pixelSize: 13
        font.weight: Font.Medium
    }
}
