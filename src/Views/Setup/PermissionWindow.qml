import QtQuick
import QtQuick.Layouts
import QtQuick.Window
import Lorvane

// The question for a grant.
LorDialog {
    id: window

    required property QtObject question

    function answer(allow: bool) {
        question.answer(allow);
        close();
    }

    title: "Lorvane"
    width: 380
    contentHeight: column.implicitHeight + 2 * column.anchors.margins
    onClosing: question.answer(false)

    ColumnLayout {
        id: column

        anchors.left: parent.left
        anchors.right: parent.right
        anchors.top: parent.top
        anchors.margins: 24
        spacing: 20
        Keys.onEscapePressed: window.answer(false)
        Accessible.role: Accessible.Dialog
        Accessible.name: window.question.text

        RowLayout {
            spacing: 16

            AppBrandIcon {
                Layout.preferredWidth: 48
                Layout.preferredHeight: 48
                Layout.alignment: Qt.AlignTop
            }

            LorText {
                Layout.fillWidth: true
                text: window.question.text
                font.pixelSize: 13
                wrapMode: Text.Wrap
            }
        }

        RowLayout {
            Layout.alignment: Qt.AlignRight
            spacing: 12

            LorStandardButton {
                text: "Don’t Allow"
                onClicked: window.answer(false)
            }

            LorStandardButton {
                text: "Allow"
                prominent: true
                focus: true
                onClicked: window.answer(true)
            }
        }
    }
}
