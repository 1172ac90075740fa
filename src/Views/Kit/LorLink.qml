import QtQuick
import Lorvane

// A borderless button in the signal colour, within a text or below it.
LorPlainButton {
    color: LorPalette.accent
    font.pixelSize: 11
    font.weight: Font.Medium
}
