import QtQuick
import QtQuick.Controls
import QtQuick.Templates as T
import Lorvane

// What all buttons share: they answer to mouse, keyboard and assistive technology alike, and show
// where the keyboard focus is.
T.AbstractButton {
    id: button

    property real focusRadius: 6
    property string tooltip: ""

    implicitWidth: implicitContentWidth + leftPadding + rightPadding
    implicitHeight: implicitContentHeight + topPadding + bottomPadding
    focusPolicy: Qt.StrongFocus
    hoverEnabled: true
    opacity: enabled ? 1 : LorPalette.disabledOpacity

    Keys.onReturnPressed: button.clicked()
    Keys.onEnterPressed: button.clicked()

    Accessible.role: Accessible.Button
    Accessible.name: text
    Accessible.onPressAction: {
        if (button.enabled)
            button.clicked();
    }

    ToolTip.visible: tooltip !== "" && hovered
    ToolTip.delay: 700
    ToolTip.text: tooltip

    HoverHandler {
        cursorShape: Qt.PointingHandCursor
    }

    // However the focus came, but by a click, which needs no answer.
    LorFocusRing {
        visible: button.activeFocus && button.focusReason !== Qt.MouseFocusReason
        cornerRadius: button.focusRadius
    }
}
