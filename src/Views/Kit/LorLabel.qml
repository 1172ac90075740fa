import QtQuick
import QtQuick.Layouts
import Lorvane

// A text with an icon before it.
RowLayout {
    id: label

    required property string symbol
    required property string text
    property color color: LorPalette.ink
    property color symbolColor: color
    property alias font: line.font
    property string description: "" // what the icon tells beyond the text

    Layout.fillWidth: false
    spacing: 6

    LorSymbol {
        Layout.alignment: Qt.AlignTop
        Layout.topMargin: Math.round((metrics.height - size) / 2)
        name: label.symbol
        size: line.font.pixelSize + 1
        color: label.symbolColor
    }

    LorText {
        id: line

        Layout.fillWidth: true
        text: label.text
        color: label.color
        wrapMode: Text.Wrap
        Accessible.description: label.description
    }

    FontMetrics {
        id: metrics
        font: line.font
    }
}
