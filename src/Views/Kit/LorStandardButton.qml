import QtQuick
import Lorvane

// A desktop's ordinary button; the prominent one is filled.
LorButton {
    id: button

    property string symbol: ""
    property bool prominent: false
    property bool destructive: false

    readonly property bool filled: prominent && enabled

    horizontalPadding: 14
    verticalPadding: 7
    font.pixelSize: LorFonts.controlSize
    focusRadius: 7

    background: Rectangle {
        radius: 7
        color: button.filled ? (button.down ? LorPalette.pressedAccent : LorPalette.accent)
                             : (button.down ? LorPalette.sidebar : LorPalette.white)
        border.width: button.filled ? 0 : 1
        border.color: LorPalette.outline
    }

    contentItem: LorButtonLabel {
        button: button
        symbol: button.symbol
        color: button.filled ? LorPalette.white : button.destructive ? LorPalette.red : LorPalette.ink
    }
}
