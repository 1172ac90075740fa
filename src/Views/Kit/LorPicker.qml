import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T
import Lorvane

// A choice of one among few, as a list that opens. Its label stands elsewhere: it carries `label`
// for assistive technology alone.
T.ComboBox {
    id: picker

    required property string label

    implicitHeight: 31
    leftPadding: 11
    rightPadding: 30
    font.pixelSize: LorFonts.controlSize
    focusPolicy: Qt.StrongFocus
    hoverEnabled: true
    opacity: enabled ? 1 : LorPalette.disabledOpacity

    Keys.onReturnPressed: open()
    Keys.onEnterPressed: open()

    // As a click does it: the keys go to the list, and Escape closes it.
    function open() {
        if (!enabled)
            return;
        forceActiveFocus(Qt.OtherFocusReason);
        popup.open();
    }

    Accessible.role: Accessible.ComboBox
    Accessible.name: label
    Accessible.description: displayText
    Accessible.onPressAction: open()

    background: Rectangle {
        radius: 7
        color: picker.down ? LorPalette.sidebar : LorPalette.white
        border.width: 1
        border.color: LorPalette.outline

        LorFocusRing {
            visible: picker.activeFocus && picker.focusReason !== Qt.MouseFocusReason
            cornerRadius: parent.radius
        }
    }

    contentItem: LorText {
        text: picker.displayText
        font: picker.font
        elide: Text.ElideRight
        verticalAlignment: Text.AlignVCenter
    }

    indicator: LorSymbol {
        x: picker.width - width - 9
        y: (picker.height - height) / 2
        name: "chevron.up.chevron.down"
        fontSize: 11
        color: LorPalette.muted
    }

    delegate: T.ItemDelegate {
        id: entry

        required property int index
        required property string modelData

        readonly property bool isChosen: index === picker.currentIndex

        width: ListView.view.width
        height: 29
        text: modelData
        highlighted: index === picker.highlightedIndex
        Accessible.role: Accessible.ListItem
        Accessible.name: text
        Accessible.selectable: true
        Accessible.selected: isChosen
        Accessible.onPressAction: clicked()

        background: Rectangle {
            radius: 5
            color: entry.highlighted ? LorPalette.accent : "transparent"
        }

        contentItem: RowLayout {
            spacing: 5

            LorSymbol {
                opacity: entry.isChosen ? 1 : 0
                name: "checkmark"
                fontSize: 10
                color: entry.highlighted ? LorPalette.white : LorPalette.ink
            }

            Text {
                Layout.fillWidth: true
                text: entry.text
                font: picker.font
                color: entry.highlighted ? LorPalette.white : LorPalette.ink
                elide: Text.ElideRight
                textFormat: Text.PlainText
                Accessible.ignored: true
            }
        }
        leftPadding: 6
        rightPadding: 6
    }

    popup: T.Popup {
        y: picker.height + 3
        width: picker.width
        height: Math.min(list.contentHeight + 2 * padding, 320)
        padding: 5
        margins: 8

        contentItem: ListView {
            id: list

            clip: true
            model: picker.delegateModel
            currentIndex: picker.highlightedIndex
            boundsBehavior: Flickable.StopAtBounds
            Accessible.role: Accessible.List
            Accessible.name: picker.label
        }

        background: LorMenuFrame {}
    }
}
