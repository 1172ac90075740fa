import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T
import Lorvane

// A field to search with, which a button of its own empties.
LorFieldFrame {
    id: search

    required property string placeholder
    property alias text: field.text

    Layout.fillWidth: true
    implicitHeight: row.implicitHeight + 22
    radius: 9
    hasFocus: field.activeFocus

    RowLayout {
        id: row

        anchors.fill: parent
        anchors.margins: 11
        spacing: 8

        LorSymbol {
            name: "magnifyingglass"
            fontSize: 12
            color: LorPalette.muted
        }

        T.TextField {
            id: field

            Layout.fillWidth: true
            implicitHeight: contentHeight
            color: LorPalette.ink
            font.pixelSize: 12
            selectByMouse: true
            selectionColor: LorPalette.accent
            selectedTextColor: LorPalette.white
            placeholderText: search.placeholder
            Accessible.name: search.placeholder
            Keys.forwardTo: [editMenu]
            Keys.onEscapePressed: event => {
                event.accepted = text !== "";
                clear();
            }

            LorPlaceholder {
                anchors.fill: parent
                field: field
            }

            LorEditMenu {
                id: editMenu
                edit: field
            }
        }

        LorPlainButton {
            visible: field.text !== ""
            text: "Clear search"
            symbol: "xmark.circle.fill"
            showsText: false
            color: LorPalette.muted
            font.pixelSize: 12
            onClicked: {
                field.clear();
                field.forceActiveFocus();
            }
        }
    }
}
