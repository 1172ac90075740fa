import QtQuick
import Lorvane

// A desktop's ordinary button; the prominent one is filled.
LorButton {
    id: button

    property bool prominent: false

    horizontalPadding: 14
    verticalPadding: 7
    font.pixelSize: 13
    focusRadius: 7

    background: Rectangle {
        radius: 7
        color: button.prominent ? LorPalette.translucent(LorPalette.accent, button.down ? 0.75 : 1)
                                : (button.down ? LorPalette.sidebar : "white")
        border.width: button.prominent ? 0 : 1
        border.color: Qt.rgba(0, 0, 0, 0.15)
    }

    contentItem: Text {
        text: button.text
        font: button.font
        color: button.prominent ? "white" : LorPalette.ink
        textFormat: Text.PlainText
        horizontalAlignment: Text.AlignHCenter
        verticalAlignment: Text.AlignVCenter
        Accessible.ignored: true
    }
}
