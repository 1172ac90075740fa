import QtQuick
import QtQuick.Controls
import Lorvane
import Lorvane.Models

// A page around a list that may be long: only what can be seen of it is built, and is used again
// while it scrolls. Head and foot, both a LorListSection, scroll with the list.
ListView {
    id: page

    // From the page's edge to the centred stack.
    readonly property real inset: LorPageLayout.margin
                                  + Math.max(0, (width - LorPageLayout.maximumWidth) / 2)

    topMargin: LorPageLayout.margin
    bottomMargin: LorPageLayout.margin
    boundsBehavior: Flickable.StopAtBounds
    clip: true
    focus: true
    reuseItems: true
    cacheBuffer: 0
    currentIndex: -1
    keyNavigationEnabled: false

    // Gives the focus to a row, after what had it is gone.
    function focusRow(row: int, reason: int) {
        if (count === 0) {
            forceActiveFocus();
            return;
        }
        const near = Math.min(row, count - 1);
        forceLayout();
        positionViewAtIndex(near, ListView.Contain);
        itemAtIndex(near).takeFocus(reason);
    }

    Keys.onPressed: event => scrolling.handle(event)

    ScrollBar.vertical: ScrollBar {}

    LorScrolling {
        id: scrolling
        page: page
        content: page.contentItem
        // So far that the next row, where Tab goes on, is built.
        margin: 64
    }

    ReadingOrder {
        content: page.contentItem
    }
}
