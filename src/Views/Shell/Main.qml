import QtQuick
import QtQuick.Window
import Lorvane

Window {
    id: window

    required property QtObject store

    title: "Lorvane"
    width: 1120
    height: 760
    minimumWidth: 950
    minimumHeight: 650
    color: LorPalette.canvas

    ContentView {
        anchors.fill: parent
        store: window.store
    }

    Loader {
        active: window.store.isSetupPresented
        sourceComponent: SetupSheet {
            store: window.store
            transientParent: window
        }
    }
}
