import QtQuick
import QtQuick.Layouts
import Lorvane

// Whether Lorvane is listening, on every page.
Rectangle {
    id: panel

    required property bool isRecording

    Layout.fillWidth: true
    implicitHeight: column.implicitHeight + 28
    radius: 12
    color: LorPalette.status

    ColumnLayout {
        id: column

        anchors.fill: parent
        anchors.margins: 14
        spacing: 9

        RowLayout {
            spacing: 6

            Rectangle {
                implicitWidth: 6
                implicitHeight: 6
                radius: 3
                color: panel.isRecording ? LorPalette.accent
                                         : LorPalette.translucent(LorPalette.green, 0.7)
            }

            LorText {
                text: panel.isRecording ? "Listening to you" : "Ready when you are"
                font.pixelSize: 11
                font.weight: Font.Medium
            }
        }

        LorText {
            text: "Hold ⌃ ⌥ Space"
            color: LorPalette.muted
            font.weight: Font.Medium
        }
    }
}
