import QtQuick
import QtQuick.Layouts
import Lorvane

// The page of one grant.
ColumnLayout {
    id: page

    required property QtObject store
    required property QtObject setup

    spacing: 16

    SetupTitle {
        heading: page.setup.title
        detail: page.setup.detail
    }

    PermissionPanelIllustration {
        title: page.setup.panel
        symbol: page.setup.symbol
    }

    LorText {
        Layout.fillWidth: true
        text: page.setup.instructions
        wrapMode: Text.Wrap
    }

    LorDetail {
        Layout.fillWidth: true
        text: page.setup.remark
        wrapMode: Text.Wrap
    }
}
