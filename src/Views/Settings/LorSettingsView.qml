import QtQuick
import QtQuick.Layouts
import Lorvane
import Lorvane.Models

// The settings, the grants, and what happens to the user's data.
LorScrollPage {
    id: page

    required property QtObject store

    spacing: LorPageLayout.spacing
    Component.onCompleted: store.refreshPermissions()

    SettingsModel {
        id: settings
        store: page.store
    }

    LorPageHeader {
        eyebrow: "Make yourself at home"
        title: "Settings"
        subtitle: "A few thoughtful defaults. Adjust them to fit the way you work."
    }

    SectionTitle {
        text: "DICTATION"
    }

    DictationSection {
        store: page.store
        settings: settings
    }

    SectionTitle {
        text: "SHORTCUT & PERMISSIONS"
    }

    PermissionsSection {
        store: page.store
        settings: settings
    }

    SectionTitle {
        text: "YOUR DATA"
    }

    DataSection {
        store: page.store
        settings: settings
    }

    RowLayout {
        Layout.fillWidth: true
        Layout.bottomMargin: 10

        LorText {
            text: "Lorvane"
            font.family: LorFonts.rounded
            font.weight: Font.DemiBold
        }

        Item {
            Layout.fillWidth: true
        }

        LorDetail {
            text: "Your voice. Your workspace."
        }
    }
}
