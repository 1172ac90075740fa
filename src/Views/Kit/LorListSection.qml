import QtQuick
import QtQuick.Layouts
import Lorvane

// What stands above or below the rows of a LorListPage.
Item {
    id: section

    required property Item list
    default property alias content: stack.data

    readonly property int spacing: LorPageLayout.spacing
    // Between the section and the rows.
    property real topPadding: 0
    property real bottomPadding: 0

    width: list.width
    implicitHeight: stack.implicitHeight + topPadding + bottomPadding

    ColumnLayout {
        id: stack

        x: section.list.inset
        y: section.topPadding
        width: section.width - 2 * section.list.inset
        spacing: section.spacing
    }
}
