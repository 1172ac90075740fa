import QtQuick
import QtQuick.Layouts
import Lorvane

ColumnLayout {
    required property QtObject store
    required property QtObject setup

    spacing: 20

    AppBrandIcon {
        Layout.topMargin: 12
        Layout.preferredWidth: 72
        Layout.preferredHeight: 72
    }

    SetupTitle {
        heading: "A few minutes. A lot less typing."
        detail: "Let’s set up your microphone, Apple Speech, and pasting at your cursor."
    }

    Instruction {
        number: "1"
        title: "Allow your microphone"
        detail: "Capture your voice only when you start a recording."
    }

    Instruction {
        number: "2"
        title: "Allow Speech Recognition"
        detail: "Turn your recording into text with Apple Speech."
    }

    Instruction {
        number: "3"
        title: "Enable Accessibility for pasting"
        detail: "Let Lorvane insert text into the field you chose."
    }

    LorText {
        Layout.fillWidth: true
        text: "You choose each permission in a macOS prompt or System Settings. This guide doesn’t start a recording."
        color: LorPalette.muted
        wrapMode: Text.Wrap
    }
}
