import QtQuick
import QtQuick.Window

// The soft shadow of a rounded rectangle of the same size; it reaches out by `blur`.
Item {
    id: shadow

    required property color color
    required property real blur
    required property real cornerRadius

    readonly property real scaling: Screen.devicePixelRatio

    Image {
        anchors.fill: parent
        anchors.margins: -shadow.blur
        sourceSize: Qt.size(shadow.width + 2 * shadow.blur, shadow.height + 2 * shadow.blur)
        source: `image://shadow/${shadow.cornerRadius * shadow.scaling}/${shadow.blur * shadow.scaling}/`
                + shadow.color.toString().slice(1)
        Accessible.ignored: true
    }
}
