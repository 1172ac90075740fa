import QtQuick
import Lorvane

// The frame of a field to write into, which shows whether it has the keyboard focus.
Rectangle {
    property bool hasFocus: false
    property color line: LorPalette.line

    color: LorPalette.white
    border.width: hasFocus ? 2 : 1
    border.color: hasFocus ? LorPalette.focus : line
}
