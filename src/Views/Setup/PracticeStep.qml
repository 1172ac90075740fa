import QtQuick
import QtQuick.Layouts
import Lorvane

// A first dictation into a field of the guide's own; its text is never kept.
ColumnLayout {
    id: page

    required property QtObject store
    required property QtObject setup

    spacing: 16

    SetupTitle {
        heading: "Hold. Speak. Release."
        detail: "Try dictating into the practice field below, or use any text field in another app."
    }

    RowLayout {
        spacing: 12

        GrantBadge {
            text: "Microphone"
            allowed: page.store.microphoneGranted
        }

        GrantBadge {
            text: "Speech"
            allowed: page.store.speechGranted
        }

        GrantBadge {
            text: "Pasting"
            allowed: page.store.accessibilityGranted
        }
    }

    Instruction {
        number: "1"
        title: "Click in a text field"
        detail: "This is where your words will go."
    }

    Instruction {
        number: "2"
        title: "Hold Control + Option + Space and speak"
        detail: "A mini waveform and timer show that you’re recording. Keep holding through pauses."
    }

    Instruction {
        number: "3"
        title: "Release the shortcut"
        detail: "Wait for transcription. Dictionary substitutions are applied before the final text is saved and pasted."
    }

    LorFieldFrame {
        Layout.fillWidth: true
        implicitHeight: 80 + 16
        radius: 10
        hasFocus: field.hasFocus

        LorTextEditor {
            id: field

            anchors.fill: parent
            anchors.margins: 8
            label: "Practice dictation text field"
            font.pixelSize: 14
            text: page.setup.practice
            onEdited: page.setup.practice = text
        }
    }

    LorDetail {
        Layout.fillWidth: true
        text: "Click inside the box before holding the shortcut. Without paste access, use ⌘V after transcription. You can also click the microphone on Home to start and finish a recording."
        wrapMode: Text.Wrap
    }
}
