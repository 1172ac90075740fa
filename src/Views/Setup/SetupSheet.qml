import QtQuick
import QtQuick.Window
import Lorvane
import Lorvane.Models

// The guide on top of the main window. Only its own buttons end it.
Window {
    id: sheet

    required property QtObject store

    title: "Lorvane"
    flags: Qt.Dialog | Qt.CustomizeWindowHint | Qt.WindowTitleHint
    modality: Qt.WindowModal
    width: setup.guideSize.width
    height: setup.guideSize.height
    minimumWidth: width
    maximumWidth: width
    minimumHeight: height
    maximumHeight: height
    color: LorPalette.canvas
    visible: true
    onClosing: close => close.accepted = !store.isSetupPresented

    Component.onCompleted: {
        raise();
        requestActivate();
    }

    SetupModel {
        id: setup
        store: sheet.store
    }

    OnboardingView {
        anchors.fill: parent
        store: sheet.store
        setup: setup
    }

    // The desktop tells of no grant that is given elsewhere.
    Timer {
        interval: 1000
        repeat: true
        running: true
        triggeredOnStart: true
        onTriggered: sheet.store.refreshPermissions()
    }
}
