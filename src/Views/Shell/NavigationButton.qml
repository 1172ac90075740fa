import QtQuick
import QtQuick.Layouts
import Lorvane

// An entry of the sidebar; all of its rectangle can be clicked.
LorButton {
    id: button

    required property string symbol
    property bool selected: false
    property string count: ""

    readonly property color foreground: selected ? LorPalette.ink : LorPalette.muted

    Layout.fillWidth: true
    Layout.bottomMargin: 4
    horizontalPadding: 12
    verticalPadding: 11
    focusRadius: 9
    Accessible.selectable: true
    Accessible.selected: selected

    background: Rectangle {
        radius: 9
        color: button.selected ? LorPalette.selectedPage : "transparent"
    }

    contentItem: RowLayout {
        spacing: 12

        Item {
            implicitWidth: 18
            implicitHeight: symbol.implicitHeight

            LorSymbol {
                id: symbol
                anchors.centerIn: parent
                name: button.symbol
                fontSize: 15
                color: button.foreground
            }
        }

        Text {
            Layout.fillWidth: true
            text: button.text
            font.pixelSize: 13
            font.weight: button.selected ? LorFonts.semibold : Font.Medium
            color: button.foreground
            Accessible.ignored: true
        }

        LorText {
            visible: text !== ""
            text: button.count
            color: LorPalette.muted
            font.pixelSize: 10
            font.weight: Font.Medium
        }
    }
}
