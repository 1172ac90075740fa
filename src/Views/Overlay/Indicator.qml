import QtQuick
import Lorvane

// The floating card. It draws what the meter holds, and is dark in every appearance.
Item {
    id: indicator

    required property QtObject meter
    required property int cornerRadius

    readonly property color accent: Qt.rgba(1, 0.43, 0.25, 1)
    readonly property color fill: Qt.rgba(0.12, 0.13, 0.14, 0.97)
    readonly property color border: Qt.rgba(1, 1, 1, 0.12)
    readonly property color foreground: "white"
    readonly property color timerColor: Qt.rgba(1, 1, 1, 0.65)
    readonly property color detailColor: Qt.rgba(1, 1, 1, 0.7)
    readonly property int rowHeight: 22

    Rectangle {
        id: card

        anchors.fill: parent
        radius: indicator.cornerRadius
        color: indicator.fill
    }

    // Over the fill: a border of the card itself would be drawn in place of it.
    Rectangle {
        anchors.fill: card
        radius: card.radius
        color: "transparent"
        border.width: 1
        border.color: indicator.border
    }

    Rectangle {
        id: glyph

        anchors.left: card.left
        anchors.leftMargin: 20
        anchors.verticalCenter: card.verticalCenter
        width: 40
        height: 40
        radius: 20
        color: LorPalette.translucent(indicator.accent, 0.15)

        LorSymbol {
            anchors.centerIn: parent
            visible: indicator.meter.showsWaveform
            name: "mic.fill"
            fontSize: 18
            color: indicator.accent
        }

        LorSpinner {
            anchors.centerIn: parent
            visible: !indicator.meter.showsWaveform
            color: indicator.foreground
        }
    }

    Column {
        anchors.left: glyph.right
        anchors.leftMargin: 16
        anchors.right: card.right
        anchors.rightMargin: 20
        anchors.verticalCenter: card.verticalCenter
        spacing: 7

        Item {
            width: parent.width
            height: title.height

            LorText {
                id: title

                text: indicator.meter.title
                color: indicator.foreground
                font.pixelSize: 12
                font.weight: LorFonts.semibold
            }

            LorTabularText {
                anchors.right: parent.right
                anchors.verticalCenter: title.verticalCenter
                text: indicator.meter.timer
                color: indicator.timerColor
                font.pixelSize: 11
                font.weight: Font.Medium
            }
        }

        Item {
            width: parent.width
            height: indicator.rowHeight

            IndicatorWaveform {
                height: parent.height
                visible: indicator.meter.showsWaveform
                samples: indicator.meter.samples
                color: indicator.accent
                Accessible.role: Accessible.Graphic
                Accessible.name: indicator.meter.accessibleLabel
                Accessible.description: indicator.meter.accessibleValue
            }

            LorText {
                width: parent.width
                anchors.verticalCenter: parent.verticalCenter
                visible: !indicator.meter.showsWaveform
                text: indicator.meter.detail
                color: indicator.detailColor
                font.pixelSize: 10
                maximumLineCount: 1
                elide: Text.ElideRight
            }
        }
    }
}
