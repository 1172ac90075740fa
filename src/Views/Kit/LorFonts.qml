pragma Singleton
import QtQuick
import Lorvane.Models

// The families that stand beside the system font, and what that has of weights.
QtObject {
    readonly property SystemFont system: SystemFont {}
    readonly property int semibold: system.semibold

    // Of what is pressed, chosen from or written into.
    readonly property int controlSize: 13

    readonly property string rounded: "Quicksand"
    // Fontconfig lists the family's medium weight as a family of its own.
    readonly property string roundedMedium: "Quicksand Medium"
    readonly property string monospaced: "monospace"
}
