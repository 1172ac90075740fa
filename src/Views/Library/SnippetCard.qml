import QtQuick
import QtQuick.Layouts
import Lorvane

// One snippet.
LorListCard {
    id: card

    required property int index
    required property string trigger
    required property string snippetContent

    signal copy(int row)
    signal edit(int row)
    signal remove(int row, int reason)

    function takeFocus(reason: int) {
        removeButton.forceActiveFocus(reason);
    }

    spacing: 15
    onPooled: written.deselect()

    RowLayout {
        Layout.fillWidth: true
        spacing: 8

        LorLabel {
            Layout.fillWidth: true
            symbol: "quote.bubble"
            text: card.trigger
            color: LorPalette.accent
            font.pixelSize: 13
            font.weight: LorFonts.semibold
        }

        LorPlainButton {
            text: "Copy snippet"
            symbol: "doc.on.doc"
            showsText: false
            onClicked: card.copy(card.index)
        }

        LorPlainButton {
            text: "Edit " + card.trigger
            symbol: "pencil"
            showsText: false
            onClicked: card.edit(card.index)
        }

        LorPlainButton {
            id: removeButton

            text: "Delete " + card.trigger
            symbol: "trash"
            showsText: false
            onClicked: card.remove(card.index, focusReason)
        }
    }

    LorSelectableText {
        id: written

        Layout.fillWidth: true
        text: card.snippetContent
        font.pixelSize: 13
        lineSpacing: 4
    }
}
