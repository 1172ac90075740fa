import QtQuick
import QtQuick.Layouts
import QtQuick.Window
import Lorvane

// A modal sheet on the window of `host`, as high as what is in it. Escape and its frame cancel it,
// Return presses the default button.
LorDialog {
    id: sheet

    required property Item host
    required property string heading
    required property Item defaultButton
    default property alias content: column.data

    signal cancel

    title: heading
    modality: Qt.WindowModal
    transientParent: host.Window.window
    contentHeight: column.implicitHeight + 2 * column.anchors.margins
    onClosing: cancel()

    function pressDefault() {
        if (defaultButton.enabled)
            defaultButton.clicked();
    }

    FocusScope {
        anchors.fill: parent
        focus: true
        Keys.onEscapePressed: sheet.cancel()
        Keys.onReturnPressed: sheet.pressDefault()
        Keys.onEnterPressed: sheet.pressDefault()
        Accessible.role: Accessible.Dialog
        Accessible.name: sheet.heading

        ColumnLayout {
            id: column

            anchors.left: parent.left
            anchors.right: parent.right
            anchors.top: parent.top
            anchors.margins: 30
            spacing: 20

            LorText {
                Layout.fillWidth: true
                text: sheet.heading
                font.pixelSize: 22
                font.weight: LorFonts.semibold
                wrapMode: Text.Wrap
                Accessible.role: Accessible.Heading
            }
        }
    }
}
