import QtQuick
import QtQuick.Layouts
import Lorvane

// The live text while it grows, and the final one with what can be done with it.
Rectangle {
    id: box

    required property QtObject home

    signal copy
    signal showHistory

    readonly property int padding: 16

    Layout.fillWidth: true
    implicitHeight: column.implicitHeight + 2 * padding
    radius: 10
    color: LorPalette.canvas

    ColumnLayout {
        id: column

        anchors.fill: parent
        anchors.margins: box.padding
        spacing: 12

        LorSelectableText {
            Layout.fillWidth: true
            text: box.home.transcript
            font.pixelSize: 15
            lineSpacing: 5
        }

        RowLayout {
            Layout.fillWidth: true
            visible: box.home.isTranscriptFinal

            LorLink {
                text: "Copy text"
                symbol: "doc.on.doc"
                enabled: !box.home.isBusy
                onClicked: box.copy()
            }

            Item {
                Layout.fillWidth: true
            }

            LorLink {
                text: "View history"
                onClicked: box.showHistory()
            }
        }
    }
}
