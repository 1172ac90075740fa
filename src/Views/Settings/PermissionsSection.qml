import QtQuick
import QtQuick.Layouts
import Lorvane

// The shortcut and the three grants.
LorCard {
    id: section

    required property QtObject store
    required property QtObject settings

    readonly property int microphoneStep: 1

    spacing: 20

    SettingRow {
        title: "Microphone"
        detail: section.settings.microphoneDetail

        LorStandardButton {
            text: "Set up microphone"
            enabled: !section.settings.isLocked
            onClicked: section.store.showSetupGuide(section.microphoneStep)
        }
    }

    LorDivider {}

    SettingRow {
        title: "Hold to talk"
        detail: "Hold to record. Release to transcribe and paste at your cursor."

        KeyChip {}
    }

    LorDivider {}

    SettingRow {
        title: "Speech recognition"
        detail: section.settings.speechDetail

        LorStandardButton {
            text: "Refresh"
            onClicked: section.store.refreshPermissions()
        }
    }

    LorDivider {}

    SettingRow {
        title: "Accessibility"
        detail: section.settings.accessibilityDetail

        LorLabel {
            visible: section.settings.canPaste
            symbol: "checkmark.circle.fill"
            text: "Enabled"
            color: LorPalette.green
            font.pixelSize: 11
        }

        LorStandardButton {
            visible: !section.settings.canPaste
            text: "Grant access"
            onClicked: section.store.requestAccessibility()
        }
    }
}
