import QtQuick
import QtQuick.Layouts
import Lorvane

// An icon and the text that it goes with, in one colour.
RowLayout {
    id: label

    required property string symbol
    required property string text
    property alias font: words.font
    property color color: LorPalette.ink

    spacing: 6

    LorSymbol {
        Layout.alignment: Qt.AlignTop
        Layout.topMargin: Math.max(0, (words.font.pixelSize * 1.2 - side) / 2)
        name: label.symbol
        fontSize: label.font.pixelSize
        color: label.color
    }

    LorText {
        id: words

        Layout.fillWidth: true
        text: label.text
        color: label.color
        wrapMode: Text.Wrap
    }
}
