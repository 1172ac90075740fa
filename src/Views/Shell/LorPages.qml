pragma Singleton
import QtQuick

// The pages of the window in the order of the sidebar.
QtObject {
    readonly property var all: [
        {
            title: "Home",
            icon: "square.grid.2x2",
            source: Qt.resolvedUrl("../Dictation/LorHomeView.qml")
        }
    ]
    readonly property int home: 0
    readonly property int history: all.findIndex(page => page.title === "History")
    readonly property bool hasHistory: history >= 0
}
