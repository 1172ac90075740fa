import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Lorvane

// A page that scrolls: a centred stack with a margin all around.
Flickable {
    id: page

    default property alias content: stack.data
    property alias spacing: stack.spacing

    readonly property int padding: 36
    readonly property int maximumWidth: 1050

    contentWidth: width
    contentHeight: stack.implicitHeight + 2 * padding
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

        x: page.padding + Math.max(0, (page.width - page.maximumWidth) / 2)
        y: page.padding
        width: Math.min(page.width, page.maximumWidth) - 2 * page.padding
    }
}
