import QtQuick
import Lorvane

// The big button that starts and finishes a dictation.
LorButton {
    id: button

    required property QtObject home

    implicitWidth: 76
    implicitHeight: 76
    focusRadius: 24
    text: home.recordLabel
    enabled: home.canToggleRecording

    background: Item {
        LorShadow {
            width: parent.width
            height: parent.height
            y: 5
            color: LorPalette.translucent(LorPalette.accent, 0.18)
            blur: 12
            cornerRadius: 24
        }

        Rectangle {
            anchors.fill: parent
            radius: 24
            color: button.down ? Qt.darker(LorPalette.accent, 1.1) : LorPalette.accent
        }
    }

    contentItem: Item {
        LorSymbol {
            anchors.centerIn: parent
            name: button.home.recordSymbol
            fontSize: 26
            color: LorPalette.white
        }
    }
}
