pragma Singleton
import QtQuick

// The families that stand beside the system font.
QtObject {
    readonly property string rounded: "Quicksand"
    readonly property string monospaced: "monospace"
}
