import QtQuick
import QtQuick.Layouts
import Lorvane

// A caption with what it is about below it.
ColumnLayout {
    required property string caption

    Layout.fillWidth: true
    spacing: 7

    LorText {
        Layout.fillWidth: true
        text: parent.caption
        font.weight: Font.Medium
    }
}
