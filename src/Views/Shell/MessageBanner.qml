import QtQuick
import QtQuick.Layouts
import Lorvane

// One message above the page, until it is dismissed or replaced.
Rectangle {
    id: banner

    required property string message
    required property bool isError

    signal dismiss

    readonly property color foreground: isError ? LorPalette.red : LorPalette.ink

    Layout.fillWidth: true
    implicitHeight: row.implicitHeight + 28
    color: LorPalette.translucent(isError ? LorPalette.red : LorPalette.green, 0.06)
    Accessible.role: isError ? Accessible.AlertMessage : Accessible.Notification
    Accessible.name: message

    RowLayout {
        id: row

        anchors.fill: parent
        anchors.margins: 14
        spacing: 10

        LorSymbol {
            name: banner.isError ? "exclamationmark.circle" : "checkmark.circle"
            fontSize: 13
            color: banner.foreground
        }

        LorSelectableText {
            Layout.fillWidth: true
            text: banner.message
            color: banner.foreground
        }

        LorPlainButton {
            text: "Dismiss message"
            symbol: "xmark"
            showsText: false
            color: banner.foreground
            onClicked: banner.dismiss()
        }
    }
}
