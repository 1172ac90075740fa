import QtQuick
import QtQuick.Layouts
import Lorvane

// The sheet in which one snippet is made or changed.
LorSheet {
    id: sheet

    required property QtObject editor

    width: 520
    heading: editor.heading
    defaultButton: save
    onCancel: editor.cancel()

    LorCaptioned {
        caption: "When I say"

        LorTextField {
            focus: true
            label: "Snippet trigger"
            placeholderText: "e.g. my signature"
            text: sheet.editor.trigger
            onTextChanged: sheet.editor.trigger = text
        }
    }

    LorCaptioned {
        caption: "Write this instead"

        LorFieldFrame {
            Layout.fillWidth: true
            implicitHeight: 200 + 16
            radius: 8
            hasFocus: content.hasFocus

            LorTextEditor {
                id: content

                anchors.fill: parent
                anchors.margins: 8
                label: "Snippet text"
                text: sheet.editor.content
                onEdited: sheet.editor.content = text
            }
        }

        LorDetail {
            Layout.fillWidth: true
            text: "Edit or paste any text here, including multiple lines. Changes are applied only when you save."
            wrapMode: Text.Wrap
        }
    }

    LorSheetError {
        text: sheet.editor.editorError
    }

    LorSheetButtons {
        onCancel: sheet.cancel()

        LorPrimaryButton {
            id: save

            text: "Save snippet"
            enabled: sheet.editor.canSave
            onClicked: sheet.editor.save()
        }
    }
}
