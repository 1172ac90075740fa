import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Lorvane

// A page that scrolls: a centred stack with a margin all around.
Flickable {
    id: page

    default property alias content: stack.data
    property alias spacing: stack.spacing

    contentWidth: width
    contentHeight: stack.implicitHeight + 2 * LorPageLayout.margin
    boundsBehavior: Flickable.StopAtBounds
    clip: true
    focus: true

    Keys.onPressed: event => scrolling.handle(event)

    ScrollBar.vertical: ScrollBar {}

    LorScrolling {
        id: scrolling
        page: page
        content: stack
    }

    ColumnLayout {
        id: stack

        x: LorPageLayout.margin + Math.max(0, (page.width - LorPageLayout.maximumWidth) / 2)
        y: LorPageLayout.margin
        width: Math.min(page.width, LorPageLayout.maximumWidth) - 2 * LorPageLayout.margin
    }
}
