pragma Singleton
import QtQuick

// The pages of the window, in their order.
QtObject {
    readonly property int home: 0
    readonly property int history: 1
    readonly property int dictionary: 2
    readonly property int snippets: 3
    readonly property int scratchpad: 4
    readonly property int settings: 5

    readonly property var all: [
        {
            title: "Home",
            icon: "square.grid.2x2",
            source: Qt.resolvedUrl("../Dictation/LorHomeView.qml")
        },
        {
            title: "History",
            icon: "clock.arrow.circlepath",
            source: Qt.resolvedUrl("../Dictation/LorHistoryView.qml")
        },
        {
            title: "Dictionary",
            icon: "character.book.closed",
            source: Qt.resolvedUrl("../Library/LorDictionaryView.qml")
        },
        {
            title: "Snippets",
            icon: "text.bubble",
            source: Qt.resolvedUrl("../Library/LorSnippetsView.qml")
        },
        {
            title: "Scratchpad",
            icon: "square.and.pencil",
            source: Qt.resolvedUrl("../Settings/LorScratchpadView.qml")
        },
        {
            title: "Settings",
            icon: "slider.horizontal.3",
            source: Qt.resolvedUrl("../Settings/LorSettingsView.qml")
        }
    ]
}
