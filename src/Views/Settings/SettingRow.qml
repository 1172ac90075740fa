import QtQuick
import QtQuick.Layouts
import Lorvane

// What can be set, what it means, and the control for it.
RowLayout {
    id: row

    required property string title
    required property string detail
    default property alias control: place.data

    Layout.fillWidth: true
    spacing: 25

    ColumnLayout {
        Layout.fillWidth: true
        spacing: 5

        LorText {
            Layout.fillWidth: true
            text: row.title
            font.pixelSize: 13
            font.weight: Font.Medium
            wrapMode: Text.Wrap
        }

        LorDetail {
            Layout.fillWidth: true
            text: row.detail
            wrapMode: Text.Wrap
        }
    }

    RowLayout {
        id: place

        Layout.fillWidth: false
    }
}
