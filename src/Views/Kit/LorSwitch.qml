import QtQuick
import QtQuick.Templates as T
import Lorvane

// A small switch whose label stands elsewhere: it carries `text` for assistive technology alone.
T.Switch {
    id: control

    implicitWidth: 32
    implicitHeight: 19
    focusPolicy: Qt.StrongFocus
    hoverEnabled: true
    opacity: enabled ? 1 : LorPalette.disabledOpacity

    Keys.onReturnPressed: change()
    Keys.onEnterPressed: change()

    Accessible.role: Accessible.CheckBox
    Accessible.name: text
    Accessible.checkable: true
    Accessible.checked: checked
    Accessible.onToggleAction: change()
    Accessible.onPressAction: change()

    // As a click does it.
    function change() {
        if (!enabled)
            return;
        toggle();
        toggled();
    }

    HoverHandler {
        cursorShape: Qt.PointingHandCursor
    }

    indicator: Rectangle {
        width: control.width
        height: control.height
        radius: height / 2
        color: control.checked ? LorPalette.accent : LorPalette.track

        Rectangle {
            x: control.visualPosition * (parent.width - width - 4) + 2
            y: 2
            width: parent.height - 4
            height: width
            radius: width / 2
            color: LorPalette.white
        }
    }

    LorFocusRing {
        visible: control.activeFocus && control.focusReason !== Qt.MouseFocusReason
        cornerRadius: control.height / 2
    }
}
