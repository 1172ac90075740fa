import QtQuick
import QtQuick.Layouts
import Lorvane

// One figure about the library.
LorCard {
    id: card

    required property string label
    required property string value
    required property string icon

    Layout.preferredWidth: 1 // all cards of a row are equally wide
    spacing: 14

    LorSymbol {
        name: card.icon
        fontSize: 14
        color: LorPalette.muted
    }

    LorText {
        Layout.fillWidth: true
        text: card.value
        font.family: LorFonts.roundedMedium
        font.pixelSize: 26
        elide: Text.ElideRight
    }

    LorText {
        Layout.fillWidth: true
        text: card.label
        color: LorPalette.muted
        font.pixelSize: 8
        font.weight: LorFonts.semibold
        font.letterSpacing: 1.2
        elide: Text.ElideRight
    }
}
