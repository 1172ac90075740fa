import QtQuick
import QtQuick.Layouts
import Lorvane

// The centre of Home: it changes with the state of a dictation.
LorCard {
    id: card

    required property QtObject store
    required property QtObject home

    signal showHistory

    spacing: 24

    RowLayout {
        Layout.fillWidth: true
        spacing: 12

        ColumnLayout {
            Layout.fillWidth: true
            spacing: 6

            LorText {
                Layout.fillWidth: true
                text: card.home.title
                font.family: LorFonts.rounded
                font.pixelSize: 23
                font.weight: Font.DemiBold
                wrapMode: Text.Wrap
                Accessible.role: Accessible.Heading
            }

            LorText {
                Layout.fillWidth: true
                text: card.home.hint
                color: LorPalette.muted
                wrapMode: Text.Wrap
            }
        }

        Rectangle {
            Layout.alignment: Qt.AlignTop
            implicitWidth: badge.implicitWidth + 20
            implicitHeight: badge.implicitHeight + 12
            radius: height / 2
            color: LorPalette.canvas

            LorText {
                id: badge

                anchors.centerIn: parent
                text: card.home.badge
                color: card.home.isRecording ? LorPalette.accent : LorPalette.muted
                font.pixelSize: 9
                font.weight: LorFonts.semibold
                font.letterSpacing: 1
            }
        }
    }

    RowLayout {
        Layout.fillWidth: true
        spacing: 24

        RecordButton {
            home: card.home
            onClicked: card.store.toggleRecording()
        }

        ColumnLayout {
            visible: card.home.isRecording
            spacing: 10

            LorWaveform {
                home: card.home
            }

            LorText {
                text: "Listening…"
                color: LorPalette.muted
            }
        }

        RowLayout {
            visible: card.home.isPreparing
            spacing: 10

            LorSpinner {
                color: LorPalette.muted
            }

            LorText {
                text: "Preparing your words…"
                font.pixelSize: 13
            }
        }

        ColumnLayout {
            visible: !card.home.isRecording && !card.home.isPreparing
            spacing: 10

            LorText {
                text: "Click to start, or hold"
                color: LorPalette.muted
            }

            LorText {
                text: "⌃  ⌥  Space"
                font.family: LorFonts.monospaced
                font.pixelSize: 15
                font.weight: Font.Medium
            }
        }

        Item {
            Layout.fillWidth: true
        }

        LorPlainButton {
            visible: card.home.isRecording
            text: "Cancel"
            color: LorPalette.muted
            font.pixelSize: 12
            onClicked: card.store.cancelRecording()
        }
    }

    TranscriptBox {
        visible: card.home.transcript !== ""
        home: card.home
        onCopy: card.store.copyTranscript(card.home.transcript)
        onShowHistory: card.showHistory()
    }
}
