import QtQuick
import QtQuick.Layouts
import Lorvane

// How dictations are recognised, written and delivered.
LorCard {
    id: section

    required property QtObject store
    required property QtObject settings

    spacing: 20

    SettingRow {
        title: "Getting started"
        detail: "Review permissions, visual instructions and hold-to-talk practice."

        LorStandardButton {
            text: "Open setup guide"
            enabled: !section.settings.isLocked
            onClicked: section.store.showSetupGuide()
        }
    }

    LorDivider {}

    SettingRow {
        title: "Recording mini window"
        detail: "A floating waveform and timer appear while you dictate, without moving your cursor."

        LorStandardButton {
            text: "Preview mini window"
            enabled: !section.settings.isLocked
            onClicked: section.store.previewRecordingIndicator()
        }
    }

    LorDivider {}

    SettingRow {
        title: "Recognition language"
        detail: "Choose the language you’ll speak."

        LorPicker {
            Layout.preferredWidth: 205
            label: "Recognition language"
            model: section.settings.languages
            currentIndex: section.settings.language
            onActivated: index => section.settings.language = index
        }
    }

    LorDivider {}

    SettingToggle {
        title: "Smart punctuation"
        detail: "Capitalize the opening letter and add an ending period when needed."
        value: section.settings.smartPunctuation
        onChanged: value => section.settings.smartPunctuation = value
    }

    LorDivider {}

    SettingToggle {
        title: "Remove filler words"
        detail: "Clean up common fillers such as “um” and “uh”."
        value: section.settings.removeFillers
        onChanged: value => section.settings.removeFillers = value
    }

    LorDivider {}

    SettingToggle {
        title: "Paste button recordings"
        detail: "Also paste recordings started by clicking. Hold-to-talk always pastes; Accessibility access is required."
        value: section.settings.autoPaste
        onChanged: value => section.settings.autoPaste = value
    }
}
