import QtQuick
import QtQuick.Layouts
import Lorvane

// Whether the grant of this step is there, and the ways to it.
ColumnLayout {
    id: controls

    required property QtObject store
    required property QtObject setup

    Layout.fillWidth: true
    Layout.topMargin: 16
    Layout.bottomMargin: 16
    spacing: 12

    LorDivider {}

    RowLayout {
        Layout.fillWidth: true

        GrantBadge {
            text: controls.setup.grantStatus
            allowed: controls.setup.isAllowed
            font.pixelSize: 12
            font.weight: Font.Medium
        }

        Item {
            Layout.fillWidth: true
        }

        LorStandardButton {
            text: "Check again"
            font.pixelSize: 12
            onClicked: controls.store.refreshPermissions()
        }
    }

    // Side by side where they fit, or else below each other.
    GridLayout {
        id: buttons

        readonly property real naturalWidth: request.implicitWidth + settings.implicitWidth
                                             + application.implicitWidth + 2 * columnSpacing

        Layout.minimumWidth: 0 // or a row of them would keep the guide from getting narrower
        columns: naturalWidth <= controls.width ? 3 : 1
        columnSpacing: 12
        rowSpacing: 10

        LorStandardButton {
            id: request

            text: controls.setup.requestLabel
            prominent: true
            font.pixelSize: 12
            enabled: !controls.setup.isAllowed
            onClicked: controls.setup.request()
        }

        LorStandardButton {
            id: settings

            text: controls.setup.settingsLabel
            font.pixelSize: 12
            onClicked: controls.setup.openSettings()
        }

        LorStandardButton {
            id: application

            text: "Show this app in Finder"
            font.pixelSize: 12
            onClicked: controls.setup.showApplication()
        }
    }
}
