import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Lorvane

// The walkthrough to the three grants.
Item {
    id: guide

    required property QtObject store
    required property QtObject setup

    readonly property var pages: [
        "WelcomeStep.qml", "GrantStep.qml", "GrantStep.qml", "GrantStep.qml", "PracticeStep.qml"
    ]

    // From wherever the focus is: the page itself may have nothing that takes it.
    Keys.onPressed: event => scrolling.handle(event)

    ColumnLayout {
        anchors.fill: parent
        anchors.margins: 30
        spacing: 0

        RowLayout {
            Layout.fillWidth: true
            Layout.bottomMargin: 18
            spacing: 8

            AppBrandIcon {
                Layout.preferredWidth: 24
                Layout.preferredHeight: 24
            }

            LorText {
                text: "LORVANE · GETTING STARTED"
                color: LorPalette.muted
                font.pixelSize: 11
                font.weight: LorFonts.semibold
                font.letterSpacing: 1
            }

            Item {
                Layout.fillWidth: true
            }

            LorText {
                text: guide.setup.position
                color: LorPalette.muted
            }
        }

        StepBar {
            steps: guide.setup.steps
            step: guide.setup.step
        }

        Flickable {
            id: scroller

            Layout.fillWidth: true
            Layout.fillHeight: true
            contentWidth: width
            contentHeight: page.height + 40
            boundsBehavior: Flickable.StopAtBounds
            clip: true
            ScrollBar.vertical: ScrollBar {}

            LorScrolling {
                id: scrolling
                page: scroller
                content: page
                margin: 20
            }

            Loader {
                id: page

                y: 20
                width: scroller.width
                Component.onCompleted: guide.showPage()
            }
        }

        GrantControls {
            visible: guide.setup.asksForGrant
            store: guide.store
            setup: guide.setup
        }

        LorDivider {}

        RowLayout {
            Layout.fillWidth: true
            Layout.topMargin: 20
            spacing: 12

            LorPlainButton {
                text: "Set up later"
                color: LorPalette.muted
                onClicked: guide.store.finishSetup()
            }

            Item {
                Layout.fillWidth: true
            }

            LorStandardButton {
                visible: guide.setup.canGoBack
                text: "Back"
                onClicked: guide.setup.goBack()
            }

            LorStandardButton {
                id: continueButton

                text: guide.setup.continueLabel
                prominent: true
                focus: true
                onClicked: guide.setup.goOn()
            }
        }

        LorText {
            Layout.topMargin: 12
            text: "Reopen this walkthrough anytime in Settings → Open setup guide."
            color: LorPalette.muted
            font.pixelSize: 10
        }
    }

    function showPage() {
        scroller.contentY = 0;
        page.setSource(pages[setup.step], { store: store, setup: setup });
    }

    // The button that has the focus may go away or out of use.
    Connections {
        target: guide.Window.window

        function onActiveFocusItemChanged() {
            if (guide.Window.activeFocusItem === guide.Window.contentItem)
                continueButton.forceActiveFocus(Qt.OtherFocusReason);
        }
    }

    Connections {
        target: guide.setup

        function onStepChanged() {
            guide.showPage();
        }
    }
}
