import QtQuick
import QtQuick.Layouts
import QtQuick.Window
import Lorvane

// The question for a grant.
Window {
    id: window

    required property QtObject question

    function answer(allow: bool) {
        question.answer(allow);
        close();
    }

    title: "Lorvane"
    flags: Qt.Dialog
    width: 380
    height: column.implicitHeight + 48
    minimumWidth: width
    maximumWidth: width
    minimumHeight: height
    maximumHeight: height
    color: LorPalette.canvas
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
