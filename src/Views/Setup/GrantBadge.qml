import QtQuick
import QtQuick.Layouts
import Lorvane

// Whether a grant is there, told by an icon and a text.
RowLayout {
    id: badge

    required property string text
    required property bool allowed
    property alias font: words.font

    Layout.fillWidth: false
    spacing: 6

    LorSymbol {
        name: badge.allowed ? "checkmark.circle.fill" : "circle"
        fontSize: badge.font.pixelSize
        color: badge.allowed ? LorPalette.green : LorPalette.muted
    }

    LorText {
        id: words

        text: badge.text
        font.pixelSize: 11
        Accessible.description: badge.allowed ? "Allowed" : "Not allowed"
    }
}
