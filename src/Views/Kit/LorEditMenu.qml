import QtQuick
import Lorvane

// The menu of a text, above which it stands. A right click opens it, and the menu key or Shift and
// F10, for which the text forwards its keys to here.
Item {
    id: editMenu

    required property Item edit // a TextInput or a TextEdit

    anchors.fill: parent

    function open(x: real, y: real) {
        edit.forceActiveFocus(Qt.PopupFocusReason);
        menu.active = true;
        menu.item.popup(edit, x, y);
    }

    Keys.onPressed: event => {
        const shiftF10 = event.key === Qt.Key_F10 && event.modifiers === Qt.ShiftModifier;
        if (!shiftF10 && event.key !== Qt.Key_Menu)
            return;
        const cursor = edit.cursorRectangle;
        open(cursor.x, cursor.y + cursor.height);
        event.accepted = true;
    }

    TapHandler {
        acceptedButtons: Qt.RightButton
        gesturePolicy: TapHandler.WithinBounds
        onPressedChanged: {
            if (pressed)
                editMenu.open(point.position.x, point.position.y);
        }
    }

    // Most texts never need theirs.
    Loader {
        id: menu

        active: false
        sourceComponent: LorMenu {
            onClosed: editMenu.edit.forceActiveFocus(Qt.PopupFocusReason)

            Entry {
                text: "Cut"
                isThere: !editMenu.edit.readOnly
                enabled: editMenu.edit.selectedText !== ""
                onTriggered: editMenu.edit.cut()
            }

            Entry {
                text: "Copy"
                enabled: editMenu.edit.selectedText !== ""
                onTriggered: editMenu.edit.copy()
            }

            Entry {
                text: "Paste"
                isThere: !editMenu.edit.readOnly
                enabled: editMenu.edit.canPaste
                onTriggered: editMenu.edit.paste()
            }

            Entry {
                text: "Select all"
                enabled: editMenu.edit.length > 0
                onTriggered: editMenu.edit.selectAll()
            }
        }
    }

    component Entry: LorMenuItem {
        property bool isThere: true

        visible: isThere
        height: isThere ? implicitHeight : 0
    }
}
