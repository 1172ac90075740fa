import QtQuick
import QtQuick.Layouts
import Lorvane

// A desktop's ordinary button, with an icon if it has one; the prominent one is filled, the
// destructive one red.
LorButton {
    id: button

    property string symbol: ""
    property bool prominent: false
    property bool destructive: false

    readonly property color foreground: prominent ? "white"
                                                  : destructive ? LorPalette.red : LorPalette.ink

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

    contentItem: RowLayout {
        spacing: 6

        LorSymbol {
            visible: button.symbol !== ""
            name: button.symbol === "" ? "circle" : button.symbol
            size: button.font.pixelSize + 1
            color: button.foreground
        }

        Text {
            Layout.fillWidth: true
            text: button.text
            font: button.font
            color: button.foreground
            textFormat: Text.PlainText
            horizontalAlignment: Text.AlignHCenter
            Accessible.ignored: true
        }
    }
}
