import QtQuick

// What makes a page scroll as on a desktop: it follows the arrow keys, what takes the focus is brought
// into view, and a mouse doesn't drag it.
Item {
    id: scrolling

    required property Flickable page
    // What the focus has to be in.
    required property Item content

    property int margin: 36
    readonly property real firstPosition: page.originY - page.topMargin
    readonly property real lastPosition: Math.max(firstPosition, page.originY + page.contentHeight
                                                 + page.bottomMargin - page.height)

    // A way of less than a page is gone in steps of less than a card: a list makes what comes before
    // it lets go of what leaves.
    function scrollTo(position: real) {
        const start = page.contentY;
        const distance = Math.max(firstPosition, Math.min(lastPosition, position)) - start;
        const steps = Math.abs(distance) < page.height ? Math.ceil(Math.abs(distance) / 50) : 1;
        for (let step = 1; step <= steps; ++step)
            page.contentY = start + distance * step / steps;
    }

    function reveal(item: Item) {
        const start = item.mapToItem(page.contentItem, 0, 0).y - margin;
        const end = start + item.height + 2 * margin;
        if (start < page.contentY)
            scrollTo(start);
        else if (end > page.contentY + page.height)
            scrollTo(Math.min(start, end - page.height));
    }

    function handle(event: KeyEvent) {
        const steps = {
            [Qt.Key_Up]: -40,
            [Qt.Key_Down]: 40,
            [Qt.Key_PageUp]: -page.height * 0.9,
            [Qt.Key_PageDown]: page.height * 0.9,
            [Qt.Key_Home]: -Infinity,
            [Qt.Key_End]: Infinity
        };
        if (!(event.key in steps))
            return;
        scrollTo(page.contentY + steps[event.key]);
        event.accepted = true;
    }

    // A mouse has a wheel; a finger has not, and drags the page itself.
    MouseArea {
        parent: scrolling.page.contentItem
        z: -1
        x: scrolling.page.contentX
        y: scrolling.page.contentY
        width: scrolling.page.width
        height: scrolling.page.height
        preventStealing: true
        onPressed: event => event.accepted = event.source === Qt.MouseEventNotSynthesized
    }

    Connections {
        target: scrolling.page.Window.window

        function onActiveFocusItemChanged() {
            const item = scrolling.page.Window.activeFocusItem;
            for (let parent = item; parent; parent = parent.parent) {
                if (parent === scrolling.content) {
                    scrolling.reveal(item);
                    return;
                }
            }
        }
    }
}
