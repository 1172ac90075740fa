import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T
import Lorvane

// A line of text with a rounded border.
T.TextField {
    id: field

    required property string label

    Layout.fillWidth: true
    implicitHeight: contentHeight + 10
    leftPadding: 8
    rightPadding: 8
    verticalAlignment: Text.AlignVCenter
    color: LorPalette.ink
    font.pixelSize: LorFonts.controlSize
    selectByMouse: true
    selectionColor: LorPalette.accent
    selectedTextColor: LorPalette.white
    Accessible.name: label
    Keys.forwardTo: [editMenu]

    background: LorFieldFrame {
        radius: 6
        hasFocus: field.activeFocus
        line: LorPalette.outline
    }

    LorPlaceholder {
        anchors.fill: parent
        anchors.leftMargin: field.leftPadding
        anchors.rightMargin: field.rightPadding
        verticalAlignment: Text.AlignVCenter
        field: field
    }

    LorEditMenu {
        id: editMenu
        edit: field
    }
}
