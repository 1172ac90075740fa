import QtQuick
import QtQuick.Layouts
import QtQuick.Window
import Lorvane

// The question before something that can't be undone. It stands on the window of `host` while
// `isPresented`; whatever ends it sets that back.
Loader {
    id: confirmation

    required property Item host
    required property string title
    required property string message
    // What the destructive button says.
    required property string action
    property bool isPresented: false

    signal confirmed

    active: isPresented

    sourceComponent: LorDialog {
        title: "Lorvane"
        modality: Qt.WindowModal
        transientParent: confirmation.host.Window.window
        width: 400
        contentHeight: column.implicitHeight + 2 * column.anchors.margins
        onClosing: confirmation.isPresented = false

        FocusScope {
            anchors.fill: parent
            focus: true
            Keys.onEscapePressed: confirmation.isPresented = false
            Accessible.role: Accessible.Dialog
            Accessible.name: confirmation.title

            ColumnLayout {
                id: column

                anchors.left: parent.left
                anchors.right: parent.right
                anchors.top: parent.top
                anchors.margins: 24
                spacing: 10

                LorText {
                    Layout.fillWidth: true
                    text: confirmation.title
                    font.pixelSize: 15
                    font.weight: LorFonts.semibold
                    wrapMode: Text.Wrap
                    Accessible.role: Accessible.Heading
                }

                LorText {
                    Layout.fillWidth: true
                    text: confirmation.message
                    wrapMode: Text.Wrap
                }

                RowLayout {
                    Layout.alignment: Qt.AlignRight
                    Layout.topMargin: 12
                    spacing: 12

                    LorStandardButton {
                        text: confirmation.action
                        destructive: true
                        onClicked: {
                            confirmation.isPresented = false;
                            confirmation.confirmed();
                        }
                    }

                    // The focus starts where nothing is lost.
                    LorStandardButton {
                        text: "Cancel"
                        focus: true
                        onClicked: confirmation.isPresented = false
                    }
                }
            }
        }
    }
}
