import QtQuick
import QtQuick.Layouts
import Lorvane

// One saved dictation.
LorListCard {
    id: card

    required property int index
    required property string date
    required property string words
    required property string duration
    required property string dictation

    signal copy(int row)
    signal remove(int row, int reason)

    function takeFocus(reason: int) {
        removeButton.forceActiveFocus(reason);
    }

    spacing: 15
    onPooled: spoken.deselect()

    RowLayout {
        Layout.fillWidth: true
        spacing: 8

        Repeater {
            model: [card.date, "·", card.words, "·", card.duration]

            LorDetail {
                required property string modelData

                text: modelData
            }
        }

        Item {
            Layout.fillWidth: true
        }

        LorPlainButton {
            text: "Copy dictation"
            tooltip: text
            symbol: "doc.on.doc"
            showsText: false
            color: LorPalette.muted
            font.pixelSize: 11
            onClicked: card.copy(card.index)
        }

        LorPlainButton {
            id: removeButton

            text: "Delete dictation"
            tooltip: text
            symbol: "trash"
            showsText: false
            color: LorPalette.muted
            font.pixelSize: 11
            onClicked: card.remove(card.index, focusReason)
        }
    }

    LorSelectableText {
        id: spoken

        Layout.fillWidth: true
        text: card.dictation
        font.pixelSize: 14
        lineSpacing: 5
    }
}
