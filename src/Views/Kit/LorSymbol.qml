import QtQuick

// An icon of the design, by its name, in one colour. It stands beside a text that tells the same.
Item {
    id: symbol

    required property string name
    required property color color
    property real size: 16

    readonly property string argb: color.toString().slice(1)

    implicitWidth: size
    implicitHeight: size

    Image {
        anchors.centerIn: parent
        width: symbol.size
        height: symbol.size
        sourceSize: Qt.size(symbol.size, symbol.size)
        source: `image://symbol/${symbol.name}/${symbol.argb}`
        Accessible.ignored: true
    }
}
