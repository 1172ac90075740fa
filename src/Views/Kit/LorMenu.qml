import QtQuick
import QtQuick.Templates as T
import Lorvane

// A menu of one column, as wide as the widest of its entries, which are LorMenuItems.
T.Menu {
    id: menu

    implicitWidth: contentItem.implicitWidth + 2 * padding
    implicitHeight: contentItem.contentHeight + 2 * padding
    padding: 5
    margins: 8

    background: LorMenuFrame {}

    contentItem: ListView {
        implicitWidth: {
            let widest = 0;
            for (let i = 0; i < menu.count; ++i)
                widest = Math.max(widest, menu.itemAt(i).implicitWidth);
            return widest;
        }
        implicitHeight: contentHeight
        model: menu.contentModel
        currentIndex: menu.currentIndex
        interactive: false
    }
}
