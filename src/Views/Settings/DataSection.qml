import QtQuick
import QtQuick.Layouts
import Lorvane

// What becomes of the user's words.
LorCard {
    id: section

    required property QtObject store
    required property QtObject settings

    spacing: 16

    LorLabel {
        symbol: "lock.shield"
        text: "Personal by design"
        font.pixelSize: 15
        font.weight: LorFonts.semibold
    }

    Repeater {
        model: [
            "Your history, dictionary, snippets, and scratchpad are stored locally in this Mac’s Application Support folder. Lorvane does not require an account.",
            "Recognition uses Apple Speech. On-device recognition is used when supported; otherwise Apple may process speech online. Availability depends on the language, device, and system settings.",
            "Audio is captured locally for the entire recording and removed after successful transcription. If transcription fails or the app quits while processing, the original audio is kept in Application Support/Lorvane/Recovery so your words can be recovered."
        ]

        LorParagraph {
            required property string modelData

            text: modelData
            color: LorPalette.muted
            lineSpacing: 4
        }
    }

    LorStandardButton {
        visible: section.settings.hasSavedRecording
        text: "Show saved recording"
        font.pixelSize: 12
        onClicked: section.store.revealRecoveryAudio()
    }

    LorDivider {}

    LorParagraph {
        text: "Lorvane is an independent implementation. Ventrel’s cloud transcription, AI rewriting, accounts, and cross-device sync are not included."
        color: LorPalette.muted
        font.pixelSize: 11
        lineSpacing: 3
    }
}
