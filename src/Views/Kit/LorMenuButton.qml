import QtQuick
import Lorvane

// A borderless button that opens a menu of one column below itself and its neighbours.
LorPlainButton {
    id: button

    default property alias entries: menu.contentData

    // Which the menu leaves as it was.
    property int reason: Qt.OtherFocusReason

    showsText: false
    onClicked: {
        if (menu.opened) {
            menu.close();
            return;
        }
        reason = focusReason;
        menu.popup(button, button.width - menu.implicitWidth, button.height + 10);
    }

    LorMenu {
        id: menu

        onClosed: button.forceActiveFocus(button.reason)
    }
}
