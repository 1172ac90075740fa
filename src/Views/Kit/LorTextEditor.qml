import QtQuick
import QtQuick.Controls
import Lorvane
import Lorvane.Models

// A field of several lines that scrolls in itself. The Tab key leaves it.
Flickable {
    id: editor

    required property string label // for assistive technology
    property string placeholder: ""
    property real lineSpacing: 0
    property alias text: contents.text
    property alias font: area.font

    readonly property real inset: 5
    readonly property alias hasFocus: area.activeFocus

    signal edited

    boundsBehavior: Flickable.StopAtBounds
    clip: true
    ScrollBar.vertical: ScrollBar {}

    // Keeps the blinking cursor in view while one types.
    TextArea.flickable: TextArea {
        id: area

        padding: 0
        leftPadding: editor.inset
        rightPadding: editor.inset
        color: LorPalette.ink
        font.pixelSize: LorFonts.controlSize
        textFormat: TextEdit.PlainText
        wrapMode: TextEdit.Wrap
        selectByMouse: true
        selectionColor: LorPalette.accent
        selectedTextColor: LorPalette.white
        background: null
        activeFocusOnTab: true
        Accessible.name: editor.label

        Keys.priority: Keys.BeforeItem
        Keys.forwardTo: [editMenu]
        Keys.onTabPressed: event => editor.leave(event, true)
        Keys.onBacktabPressed: event => editor.leave(event, false)

        LineSpacing {
            document: area.textDocument
            spacing: editor.lineSpacing
        }

        LorEditMenu {
            id: editMenu
            edit: area
        }

        DocumentText {
            id: contents

            document: area.textDocument
            onEdited: editor.edited()
        }
    }

    LorParagraph {
        width: editor.width
        leftPadding: editor.inset
        visible: editor.placeholder !== "" && editor.text === ""
        text: editor.placeholder
        font: area.font
        lineSpacing: editor.lineSpacing
        color: LorPalette.placeholder
        Accessible.ignored: true
    }

    function leave(event: var, forward: bool) {
        const next = area.nextItemInFocusChain(forward);
        if (next)
            next.forceActiveFocus(forward ? Qt.TabFocusReason : Qt.BacktabFocusReason);
        event.accepted = true;
    }
}
