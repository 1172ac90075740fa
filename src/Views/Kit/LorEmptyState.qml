import QtQuick
import QtQuick.Layouts
import Lorvane

// What a list shows while there is nothing in it.
ColumnLayout {
    id: state

    required property string icon
    required property string title
    required property string message

    Layout.fillWidth: true
    Layout.maximumWidth: Number.POSITIVE_INFINITY // not that of the message
    Layout.topMargin: 45
    Layout.bottomMargin: 45
    spacing: 12

    Rectangle {
        Layout.alignment: Qt.AlignHCenter
        implicitWidth: 62
        implicitHeight: 62
        radius: 18
        color: LorPalette.translucent(LorPalette.accent, 0.07)

        LorSymbol {
            anchors.centerIn: parent
            name: state.icon
            fontSize: 27
            color: LorPalette.accent
        }
    }

    LorText {
        Layout.alignment: Qt.AlignHCenter
        text: state.title
        font.pixelSize: 17
        font.weight: LorFonts.semibold
    }

    LorText {
        Layout.alignment: Qt.AlignHCenter
        Layout.fillWidth: true
        Layout.maximumWidth: 340
        text: state.message
        color: LorPalette.muted
        horizontalAlignment: Text.AlignHCenter
        wrapMode: Text.Wrap
    }
}
