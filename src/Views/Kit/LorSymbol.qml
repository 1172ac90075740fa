import QtQuick

// An icon of the design, by its name, in one colour. It stands beside a text that tells the same.
Item {
    id: symbol

    required property string name
    required property color color
    // Of the text that the icon goes with: it is a little larger than the letters.
    required property real fontSize

    readonly property int side: Math.round(fontSize * 1.08)
    readonly property string argb: color.toString().slice(1)

    visible: name !== ""
    implicitWidth: side
    implicitHeight: side

    Image {
        anchors.centerIn: parent
        width: symbol.side
        height: symbol.side
        sourceSize: Qt.size(symbol.side, symbol.side)
        source: symbol.name === "" ? "" : `image://symbol/${symbol.name}/${symbol.argb}`
        Accessible.ignored: true
    }
}
