import QtQuick
import QtQuick.Layouts
import Lorvane

// Whether a grant is there, told by an icon and a text.
RowLayout {
    id: badge

    required property string text
    required property bool allowed
    property int pixelSize: 11
    property int weight: Font.Normal

    spacing: 6

    LorSymbol {
        name: badge.allowed ? "checkmark.circle.fill" : "circle"
        size: badge.pixelSize + 1
        color: badge.allowed ? LorPalette.green : LorPalette.muted
    }

    LorText {
        text: badge.text
        font.pixelSize: badge.pixelSize
        font.weight: badge.weight
        Accessible.description: badge.allowed ? "Allowed" : "Not allowed"
    }
}
