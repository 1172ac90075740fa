import QtQuick
import QtQuick.Window

// An indeterminate progress indicator: spokes that fade around a circle. It turns in steps, so
// that it costs a few small frames a second and not sixty.
Item {
    id: spinner

    required property color color
    property int position: 0
    readonly property int spokes: 8

    implicitWidth: 16
    implicitHeight: 16

    Repeater {
        model: spinner.spokes

        Item {
            id: spoke

            required property int index

            anchors.fill: parent
            rotation: index * 360 / spinner.spokes
            opacity: 1 - 0.8 * ((spinner.position - index + spinner.spokes) % spinner.spokes)
                     / (spinner.spokes - 1)

            Rectangle {
                anchors.horizontalCenter: parent.horizontalCenter
                width: spinner.width / 8
                height: spinner.height * 0.3
                radius: width / 2
                color: spinner.color
                antialiasing: true
            }
        }
    }

    Timer {
        interval: 100
        repeat: true
        running: spinner.visible && spinner.Window.visibility !== Window.Hidden
        onTriggered: spinner.position = (spinner.position + 1) % spinner.spokes
    }
}
