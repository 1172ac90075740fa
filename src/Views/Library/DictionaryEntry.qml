import QtQuick
import QtQuick.Layouts
import Lorvane

// One entry in the panel that all of them share: each row draws its part of the panel, so that a
// long dictionary needs no more than the rows that can be seen.
LorListRow {
    id: entry

    required property int index
    required property string preferredText
    required property string recognizes

    signal copy(int row)
    signal edit(int row)
    signal remove(int row, int reason)

    readonly property bool isFirst: index === 0
    readonly property bool isLast: ListView.view !== null && index === ListView.view.count - 1
    readonly property int padding: 20
    readonly property int cornerRadius: 14

    function takeFocus(reason: int) {
        removeButton.forceActiveFocus(reason);
    }

    implicitHeight: row.implicitHeight + 2 * padding + divider.height
    onPooled: {
        name.deselect();
        phrases.deselect();
    }

    // The panel goes on above and below the row, but for its ends.
    Item {
        id: panel

        x: entry.inset
        width: entry.width - 2 * entry.inset
        height: entry.height
        clip: true

        Rectangle {
            y: entry.isFirst ? 0 : -radius
            width: parent.width
            height: parent.height - y + (entry.isLast ? 0 : radius)
            radius: entry.cornerRadius
            color: LorPalette.panel
            border.width: 1
            border.color: LorPalette.line
        }

        LorDivider {
            id: divider

            visible: !entry.isLast
            x: entry.padding
            y: parent.height - height
            width: parent.width - x
            height: visible ? implicitHeight : 0
        }
    }

    RowLayout {
        id: row

        x: entry.inset + entry.padding
        y: entry.padding
        width: entry.width - 2 * x
        spacing: 18

        Rectangle {
            implicitWidth: 36
            implicitHeight: 36
            radius: 9
            color: LorPalette.canvas

            LorSymbol {
                anchors.centerIn: parent
                name: "textformat.abc"
                fontSize: 17
                color: LorPalette.muted
            }
        }

        ColumnLayout {
            Layout.fillWidth: true
            spacing: 7

            LorSelectableText {
                id: name

                Layout.fillWidth: true
                text: entry.preferredText
                font.pixelSize: 14
                font.weight: Font.Medium
            }

            LorSelectableText {
                id: phrases

                Layout.fillWidth: true
                text: entry.recognizes
                color: LorPalette.muted
                maximumLineCount: 3
            }
        }

        LorPlainButton {
            text: "Copy " + entry.preferredText
            tooltip: "Copy preferred name or phrase"
            symbol: "doc.on.doc"
            showsText: false
            onClicked: entry.copy(entry.index)
        }

        LorPlainButton {
            text: "Edit " + entry.preferredText
            symbol: "pencil"
            showsText: false
            onClicked: entry.edit(entry.index)
        }

        LorPlainButton {
            id: removeButton

            text: "Delete " + entry.preferredText
            symbol: "trash"
            showsText: false
            onClicked: entry.remove(entry.index, focusReason)
        }
    }
}
