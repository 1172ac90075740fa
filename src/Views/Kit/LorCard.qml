import QtQuick
import QtQuick.Layouts
import Lorvane

// A white card with a hairline border, through which a little of the canvas shows. Its children stand below each other.
Rectangle {
    default property alias content: column.data
    property alias spacing: column.spacing

    readonly property int padding: 24

    Layout.fillWidth: true
    implicitWidth: column.implicitWidth + 2 * padding
    implicitHeight: column.implicitHeight + 2 * padding
    radius: 16
    color: LorPalette.card
    border.width: 1
    border.color: LorPalette.line

    ColumnLayout {
        id: column

        anchors.fill: parent
        anchors.margins: parent.padding
        spacing: 0
    }
}
