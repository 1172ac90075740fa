import QtQuick
import Lorvane
import Lorvane.Models

// A wrapping text that can be selected and copied, cut off after a number of lines if that is set.
Item {
    id: selectable

    property alias text: edit.text
    property alias font: edit.font
    property alias color: edit.color
    property real lineSpacing: 0
    property int maximumLineCount: 0

    readonly property real lineHeight: edit.contentHeight / Math.max(1, edit.lineCount)
    readonly property real maximumHeight: maximumLineCount * lineHeight - lineSpacing
    readonly property bool truncated: maximumLineCount > 0 && edit.lineCount > maximumLineCount

    function deselect() {
        edit.deselect();
    }

    implicitWidth: edit.implicitWidth
    // The document has the spacing below its last line, too.
    implicitHeight: truncated ? maximumHeight : edit.contentHeight - lineSpacing

    LorFocusRing {
        visible: edit.activeFocus && edit.selectedText === ""
        distance: 4
        cornerRadius: 0
    }

    Item {
        anchors.fill: parent
        clip: selectable.truncated

        TextEdit {
            id: edit

            width: parent.width
            color: LorPalette.ink
            font.pixelSize: 12
            textFormat: TextEdit.PlainText
            wrapMode: TextEdit.Wrap
            readOnly: true
            selectByMouse: true
            selectByKeyboard: true
            activeFocusOnTab: true
            selectionColor: LorPalette.accent
            selectedTextColor: LorPalette.white
            KeyNavigation.priority: KeyNavigation.BeforeItem
            Keys.forwardTo: [editMenu]
            Accessible.role: Accessible.StaticText
            Accessible.name: text
            Accessible.readOnly: true

            LorEditMenu {
                id: editMenu
                edit: edit
            }

            LineSpacing {
                document: edit.textDocument
                spacing: selectable.lineSpacing
            }
        }

        Rectangle {
            anchors.right: parent.right
            anchors.bottom: parent.bottom
            visible: selectable.truncated
            width: ellipsis.width + 6
            height: ellipsis.height
            color: LorPalette.card

            Text {
                id: ellipsis
                anchors.right: parent.right
                text: "…"
                font: edit.font
                color: edit.color
                Accessible.ignored: true
            }
        }
    }
}
