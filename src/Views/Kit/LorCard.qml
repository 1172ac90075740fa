import QtQuick
import QtQuick.Layouts
import Lorvane

// A translucent white card with a hairline border. Its children stand below each other.
Rectangle {
    default property alias content: column.data
    property alias spacing: column.spacing

    readonly property int padding: 24

    Layout.fillWidth: true
    implicitWidth: column.implicitWidth + 2 * padding
    implicitHeight: column.implicitHeight + 2 * padding
    radius: 16
    color: Qt.rgba(1, 1, 1, 0.88)
    border.width: 1
    border.color: LorPalette.line

    ColumnLayout {
        id: column

        anchors.fill: parent
        anchors.margins: parent.padding
        spacing: 0
    }
}
