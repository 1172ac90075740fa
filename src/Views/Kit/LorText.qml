import QtQuick
import Lorvane

// A text that is only read. Assistive technology reads it as shown.
Text {
    color: LorPalette.ink
    font.pixelSize: 12
    textFormat: Text.PlainText
    Accessible.role: Accessible.StaticText
    Accessible.name: text
}
