import QtQuick
import QtQuick.Layouts
import Lorvane

// A borderless button: a text, an icon, or both.
LorButton {
    id: button

    property string symbol: ""
    property color color: LorPalette.ink
    property bool showsText: true

    font.pixelSize: LorFonts.controlSize

    // An icon alone is small, so a click just beside it counts, too.
    TapHandler {
        margin: button.showsText ? 0 : 4
        onTapped: point => {
            if (!button.contains(point.position))
                button.clicked();
        }
    }

    contentItem: RowLayout {
        spacing: 6

        LorSymbol {
            name: button.symbol
            fontSize: button.font.pixelSize
            color: button.color
            opacity: button.down ? 0.6 : 1
        }

        Text {
            visible: button.showsText
            text: button.text
            font: button.font
            color: button.color
            opacity: button.down ? 0.6 : 1
            textFormat: Text.PlainText
            Accessible.ignored: true
        }
    }
}
