import QtQuick
import QtQuick.Templates as T
import Lorvane

// A borderless button that opens a menu of one column below itself.
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
        menu.popup(button, 0, button.height + 4);
    }

    T.Menu {
        id: menu

        onClosed: button.forceActiveFocus(button.reason)

        implicitWidth: contentItem.implicitWidth + 2 * padding
        implicitHeight: contentItem.contentHeight + 2 * padding
        padding: 5
        margins: 8

        background: LorMenuFrame {}

        contentItem: ListView {
            implicitWidth: contentItem.childrenRect.width
            implicitHeight: contentHeight
            model: menu.contentModel
            currentIndex: menu.currentIndex
            interactive: false
        }
    }
}
