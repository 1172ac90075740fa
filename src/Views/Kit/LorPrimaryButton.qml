import QtQuick
import Lorvane

// The button that a page wants to be pressed.
LorButton {
    id: button

    property string symbol: ""

    horizontalPadding: 18
    verticalPadding: 11
    font.pixelSize: LorFonts.controlSize
    font.weight: LorFonts.semibold
    focusRadius: 9
    opacity: 1

    background: Rectangle {
        radius: 9
        color: button.down ? LorPalette.pressedAccent : LorPalette.accent
    }

    contentItem: LorButtonLabel {
        button: button
        symbol: button.symbol
        color: LorPalette.white
    }
}
