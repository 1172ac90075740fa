import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T
import Lorvane

// Asks before something is destroyed. Escape is Cancel, which is also what Return chooses at first.
T.Dialog {
    id: dialog

    required property string message
    required property string action

    signal confirmed

    parent: T.Overlay.overlay
    anchors.centerIn: parent
    width: 360
    padding: 24
    modal: true
    focus: true
    closePolicy: T.Popup.CloseOnEscape
    onOpened: cancel.forceActiveFocus(Qt.TabFocusReason)

    T.Overlay.modal: Rectangle {
        color: Qt.rgba(0, 0, 0, 0.25)
    }

    background: Rectangle {
        radius: 14
        color: LorPalette.canvas
        border.width: 1
        border.color: Qt.rgba(0, 0, 0, 0.15)
    }

    contentItem: ColumnLayout {
        spacing: 8

        LorText {
            Layout.fillWidth: true
            text: dialog.title
            font.pixelSize: 14
            font.weight: Font.DemiBold
            wrapMode: Text.Wrap
            Accessible.role: Accessible.Heading
        }

        LorText {
            Layout.fillWidth: true
            text: dialog.message
            color: LorPalette.muted
            wrapMode: Text.Wrap
        }

        RowLayout {
            Layout.alignment: Qt.AlignRight
            Layout.topMargin: 12
            spacing: 12

            LorStandardButton {
                text: dialog.action
                destructive: true
                onClicked: {
                    dialog.close();
                    dialog.confirmed();
                }
            }

            LorStandardButton {
                id: cancel

                text: "Cancel"
                onClicked: dialog.close()
            }
        }
    }
}
