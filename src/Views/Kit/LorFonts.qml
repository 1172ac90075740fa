pragma Singleton
import QtQuick

// The families that stand beside the system font.
QtObject {
    readonly property string rounded: "Quicksand"
    // Fontconfig lists the family's medium weight as a family of its own.
    readonly property string roundedMedium: "Quicksand Medium"
    readonly property string monospaced: "monospace"
}
