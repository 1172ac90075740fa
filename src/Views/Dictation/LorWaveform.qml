import QtQuick
import Lorvane

// A small level meter with a ragged outline.
Item {
    id: waveform

    required property QtObject home

    implicitWidth: bars.implicitWidth
    implicitHeight: 35
    Accessible.role: Accessible.Graphic
    Accessible.name: "Microphone audio level"

    Row {
        id: bars

        anchors.verticalCenter: parent.verticalCenter
        height: parent.height
        spacing: 4

        Repeater {
            model: waveform.home.barShares

            Rectangle {
                required property int index
                required property real modelData

                anchors.verticalCenter: parent.verticalCenter
                width: 4
                height: waveform.home.barHeights[index]
                radius: 2
                color: LorPalette.translucent(LorPalette.accent, 0.45 + modelData * 0.55)

                Behavior on height {
                    NumberAnimation {
                        duration: 120
                        easing.type: Easing.OutQuad
                    }
                }
            }
        }
    }
}
