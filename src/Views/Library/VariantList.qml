import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Lorvane

// The variants of a dictionary entry, a line for each. Beyond five lines it scrolls, and follows
// the keyboard.
Flickable {
    id: list

    required property QtObject editor

    Layout.fillWidth: true
    implicitHeight: editor.variantsHeight
    contentWidth: width
    contentHeight: lines.implicitHeight
    boundsBehavior: Flickable.StopAtBounds
    clip: true

    // The focus goes to the line that comes in its place.
    function remove(row: int) {
        editor.removeVariant(row);
        variants.itemAt(Math.min(row, variants.count - 1)).takeFocus();
    }

    ScrollBar.vertical: ScrollBar {}

    LorScrolling {
        page: list
        content: lines
        margin: 5
    }

    ColumnLayout {
        id: lines

        width: list.width - 4
        spacing: 10

        Repeater {
            id: variants

            model: list.editor

            RowLayout {
                id: line

                required property int index
                required property string variant

                function takeFocus() {
                    field.forceActiveFocus(Qt.OtherFocusReason);
                }

                spacing: 8

                LorTextField {
                    id: field

                    label: "Recognized variant"
                    placeholderText: "e.g. shiv on or she vawn"
                    text: line.variant
                    onTextEdited: list.editor.setVariant(line.index, text)
                }

                LorPlainButton {
                    text: "Remove variant"
                    symbol: "minus.circle"
                    showsText: false
                    enabled: list.editor.canRemoveVariant
                    onClicked: list.remove(line.index)
                }
            }
        }
    }
}
