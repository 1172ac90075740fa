import QtQuick
import QtQuick.Layouts
import Lorvane

// Where in the guide one is; the labels aren't buttons.
RowLayout {
    id: bar

    required property var steps
    required property int step

    Layout.fillWidth: true
    spacing: 8

    Repeater {
        model: bar.steps

        Rectangle {
            required property int index
            required property string modelData

            readonly property bool isCurrent: index === bar.step

            Layout.fillWidth: true
            Layout.preferredWidth: 1
            implicitHeight: label.implicitHeight + 18
            radius: 9
            color: isCurrent ? LorPalette.accent : LorPalette.sidebar

            LorText {
                id: label

                anchors.centerIn: parent
                text: parent.modelData
                color: parent.isCurrent ? LorPalette.white : LorPalette.muted
                font.pixelSize: 11
                font.weight: Font.Medium
                Accessible.selected: parent.isCurrent
            }
        }
    }
}
