import QtQuick
import Lorvane

// What a menu or a list that opens stands on.
Rectangle {
    radius: 8
    color: LorPalette.white
    border.width: 1
    border.color: LorPalette.outline
}
