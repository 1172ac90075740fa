import QtQuick
import QtQuick.Layouts
import Lorvane

// The head of a page: small spaced capitals, a rounded title, and a line below it.
ColumnLayout {
    id: header

    required property string eyebrow
    required property string title
    required property string subtitle

    Layout.fillWidth: true
    spacing: 9

    LorText {
        Layout.fillWidth: true
        text: header.eyebrow.toUpperCase()
        color: LorPalette.accent
        font.pixelSize: 10
        font.weight: LorFonts.semibold
        font.letterSpacing: 2
    }

    LorText {
        Layout.fillWidth: true
        text: header.title
        font.family: LorFonts.rounded
        font.pixelSize: 32
        font.weight: Font.DemiBold
        font.letterSpacing: -0.8
        wrapMode: Text.Wrap
        Accessible.role: Accessible.Heading
    }

    LorText {
        Layout.fillWidth: true
        text: header.subtitle
        color: LorPalette.muted
        font.pixelSize: 13
        wrapMode: Text.Wrap
    }
}
