import QtQuick
import QtQuick.Layouts
import Lorvane

// The heading of a step and what it is about.
ColumnLayout {
    id: title

    required property string heading
    required property string detail

    Layout.fillWidth: true
    spacing: 10

    LorText {
        Layout.fillWidth: true
        text: title.heading
        font.family: LorFonts.rounded
        font.pixelSize: 27
        font.weight: Font.DemiBold
        wrapMode: Text.Wrap
        Accessible.role: Accessible.Heading
    }

    LorText {
        Layout.fillWidth: true
        text: title.detail
        color: LorPalette.muted
        font.pixelSize: 13
        wrapMode: Text.Wrap
    }
}
