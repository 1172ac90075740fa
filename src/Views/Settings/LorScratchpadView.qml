import QtQuick
import QtQuick.Layouts
import Lorvane
import Lorvane.Models

// A single free text that grows with the window and scrolls in itself.
Item {
    id: page

    required property QtObject store

    ScratchpadModel {
        id: pad
        store: page.store
    }

    ColumnLayout {
        anchors.fill: parent
        anchors.margins: LorPageLayout.margin
        spacing: LorPageLayout.spacing

        LorPageHeader {
            eyebrow: "A little room to think"
            title: "Scratchpad"
            subtitle: "A quiet place to gather your words. Saved automatically on this Mac."
        }

        RowLayout {
            spacing: 8

            LorDetail {
                text: pad.wordCount
            }

            Item {
                Layout.fillWidth: true
            }

            LorStandardButton {
                text: "Copy all"
                symbol: "doc.on.doc"
                enabled: !pad.isEmpty
                onClicked: page.store.copyTranscript(pad.text)
            }

            LorStandardButton {
                text: "Clear…"
                destructive: true
                enabled: !pad.isEmpty
                onClicked: confirmClear.isPresented = true
            }
        }

        LorFieldFrame {
            Layout.fillWidth: true
            Layout.fillHeight: true
            radius: 16
            color: LorPalette.panel
            hasFocus: editor.hasFocus

            LorTextEditor {
                id: editor

                anchors.fill: parent
                anchors.margins: 20
                label: "Scratchpad text"
                placeholder: "Start anywhere. A note, a draft, a passing thought…"
                font.pixelSize: 15
                lineSpacing: 6
                text: pad.text
                onEdited: pad.text = text
            }
        }

        LorNote {
            Layout.fillWidth: true
            symbol: "lightbulb"
            text: "Copy a dictation from History and paste it here to keep working."
        }
    }

    LorConfirmation {
        id: confirmClear

        host: page
        title: "Clear your scratchpad?"
        message: "This removes the scratchpad text. This can’t be undone."
        action: "Clear scratchpad"
        onConfirmed: pad.text = ""
    }
}
