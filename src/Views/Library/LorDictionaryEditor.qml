import QtQuick
import QtQuick.Layouts
import Lorvane

// The sheet in which one dictionary entry is made or changed.
LorSheet {
    id: sheet

    required property QtObject editor

    width: 570
    heading: editor.heading
    defaultButton: save
    onCancel: editor.cancel()

    LorText {
        Layout.fillWidth: true
        text: "All variants below will become the same preferred name or phrase."
        color: LorPalette.muted
        wrapMode: Text.Wrap
    }

    LorCaptioned {
        caption: "Preferred name or phrase"

        LorTextField {
            focus: true
            label: "Preferred name or phrase"
            placeholderText: "e.g. Siobhan"
            text: sheet.editor.replacement
            onTextChanged: sheet.editor.replacement = text
        }
    }

    LorCaptioned {
        caption: "Spoken / transcribed variants"

        VariantList {
            editor: sheet.editor
        }

        LorPlainButton {
            text: "Add another variant"
            symbol: "plus.circle"
            color: LorPalette.accent
            onClicked: sheet.editor.addVariant()
        }

        LorDetail {
            Layout.fillWidth: true
            text: "Enter spellings Apple Speech actually writes. Sound-alike variants are matched as whole phrases; they are not guessed automatically. Leave variants empty to keep only the preferred spelling."
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

            text: "Save entry"
            enabled: sheet.editor.canSave
            onClicked: sheet.editor.save()
        }
    }
}
