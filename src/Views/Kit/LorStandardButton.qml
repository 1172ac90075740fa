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
    font.pixelSize: 13
    focusRadius: 7

    background: Rectangle {
        radius: 7
        color: button.filled ? LorPalette.translucent(LorPalette.accent, button.down ? 0.75 : 1)
                             : (button.down ? LorPalette.sidebar : "white")
        border.width: button.filled ? 0 : 1
        border.color: LorPalette.outline
    }

    contentItem: LorButtonLabel {
        button: button
        symbol: button.symbol
        color: button.filled ? "white" : button.destructive ? LorPalette.red : LorPalette.ink
    }
}
