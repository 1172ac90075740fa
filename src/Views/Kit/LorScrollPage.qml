import QtQuick
import QtQuick.Controls
import QtQuick.Layouts

// A page that scrolls: a centred stack with a margin all around. What takes the keyboard focus is
// brought into view.
Flickable {
    id: page

    default property alias content: stack.data
    property alias spacing: stack.spacing

    readonly property int padding: 36
    readonly property int maximumWidth: 1050

    function reveal(item: Item) {
        if (!item || item === page)
            return;
        const top = item.mapToItem(contentItem, 0, 0).y;
        const bottom = top + item.height;
        if (top - padding < contentY)
            contentY = Math.max(0, top - padding);
        else if (bottom + padding > contentY + height)
            contentY = Math.min(contentHeight - height, bottom + padding - height);
    }

    function scrollBy(distance: real) {
        contentY = Math.max(0, Math.min(contentHeight - height, contentY + distance));
    }

    contentWidth: width
    contentHeight: stack.implicitHeight + 2 * padding
    boundsBehavior: Flickable.StopAtBounds
    clip: true

    Keys.onPressed: event => {
        const steps = {
            [Qt.Key_Up]: -40,
            [Qt.Key_Down]: 40,
            [Qt.Key_PageUp]: -height * 0.9,
            [Qt.Key_PageDown]: height * 0.9
        };
        if (event.key in steps) {
            scrollBy(steps[event.key]);
            event.accepted = true;
        }
    }

    ScrollBar.vertical: ScrollBar {}

    Connections {
        target: page.Window.window

        function onActiveFocusItemChanged() {
            const item = page.Window.activeFocusItem;
            for (let parent = item; parent; parent = parent.parent) {
                if (parent === stack) {
                    page.reveal(item);
                    return;
                }
            }
        }
    }

    ColumnLayout {
        id: stack

        x: page.padding + Math.max(0, (page.width - page.maximumWidth) / 2)
        y: page.padding
        width: Math.min(page.width, page.maximumWidth) - 2 * page.padding
    }
}
