import QtQuick
import QtQuick.Layouts
import Lorvane

// The last row of a sheet: Cancel, and what the sheet adds.
RowLayout {
    id: row

    signal cancel

    Layout.fillWidth: true
    spacing: 12

    Item {
        Layout.fillWidth: true
    }

    LorStandardButton {
        text: "Cancel"
        onClicked: row.cancel()
    }
}
