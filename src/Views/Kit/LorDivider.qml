import QtQuick
import QtQuick.Layouts
import Lorvane

// A hairline across the available width.
Rectangle {
    Layout.fillWidth: true
    implicitHeight: 1
    color: LorPalette.line
}
