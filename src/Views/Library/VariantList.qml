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
            model: list.editor

            RowLayout {
                id: line

                required property int index
                required property string variant

                spacing: 8

                LorTextField {
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
                    onClicked: list.editor.removeVariant(line.index)
                }
            }
        }
    }
}
