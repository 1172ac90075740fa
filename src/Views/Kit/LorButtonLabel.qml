import QtQuick
import QtQuick.Layouts
import Lorvane

// The centred text of a button, behind its icon if it has one.
Item {
    id: label

    required property Item button
    required property string symbol
    required property color color

    implicitWidth: row.implicitWidth
    implicitHeight: words.implicitHeight // an icon doesn't make it higher than its neighbours

    RowLayout {
        id: row

        anchors.centerIn: parent
        spacing: 6

        LorSymbol {
            name: label.symbol
            fontSize: label.button.font.pixelSize
            color: label.color
        }

        Text {
            id: words

            text: label.button.text
            font: label.button.font
            color: label.color
            textFormat: Text.PlainText
            Accessible.ignored: true
        }
    }
}
