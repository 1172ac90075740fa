import QtQuick

// One bar for each entry of the level history, oldest at the left.
Row {
    id: waveform

    property var samples: []
    property color color

    spacing: 3

    Repeater {
        model: waveform.samples.length

        Rectangle {
            required property int index

            anchors.verticalCenter: parent.verticalCenter
            width: 4
            height: 3 + waveform.samples[index] * 19
            radius: 2
            color: waveform.color

            Behavior on height {
                NumberAnimation { duration: 80 }
            }
        }
    }
}
