import QtQuick
import QtQuick.Layouts
import Lorvane

// One numbered thing to do.
RowLayout {
    id: instruction

    required property string number
    required property string title
    required property string detail

    Layout.fillWidth: true
    spacing: 12

    Rectangle {
        Layout.alignment: Qt.AlignTop
        implicitWidth: 26
        implicitHeight: 26
        radius: 13
        color: LorPalette.sidebar

        LorText {
            anchors.centerIn: parent
            text: instruction.number
            font.weight: LorFonts.semibold
        }
    }

    ColumnLayout {
        Layout.fillWidth: true
        spacing: 3

        LorText {
            Layout.fillWidth: true
            text: instruction.title
            font.pixelSize: 13
            font.weight: LorFonts.semibold
            wrapMode: Text.Wrap
        }

        LorText {
            Layout.fillWidth: true
            text: instruction.detail
            color: LorPalette.muted
            wrapMode: Text.Wrap
        }
    }
}
