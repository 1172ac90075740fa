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
            pixelSize: 12
            weight: Font.Medium
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

    LorStandardButton {
        text: controls.setup.requestLabel
        prominent: true
        font.pixelSize: 12
        enabled: !controls.setup.isAllowed
        onClicked: controls.setup.request()
    }
}
