import QtQuick

// Digits of one width each, whatever the font: a running timer doesn't tremble.
Row {
    id: tabular

    property string text
    property font font
    required property color color

    Accessible.role: Accessible.StaticText
    Accessible.name: text

    TextMetrics {
        id: digit
        font: tabular.font
        text: "0"
    }

    Repeater {
        model: tabular.text.length

        Text {
            required property int index

            readonly property string character: tabular.text.charAt(index)

            text: character
            font: tabular.font
            color: tabular.color
            width: character >= "0" && character <= "9" ? Math.ceil(digit.advanceWidth) : implicitWidth
            horizontalAlignment: Text.AlignHCenter
            Accessible.ignored: true
        }
    }
}
