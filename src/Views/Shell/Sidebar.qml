import QtQuick
import QtQuick.Layouts
import Lorvane

// The application's name, the pages and the state.
Rectangle {
    id: sidebar

    required property QtObject store
    required property int page

    signal choose(int page)

    implicitWidth: 216
    color: LorPalette.sidebar

    ColumnLayout {
        anchors.fill: parent
        anchors.leftMargin: 16
        anchors.rightMargin: 16
        spacing: 0

        RowLayout {
            Layout.topMargin: 28
            Layout.bottomMargin: 38
            spacing: 10

            AppBrandIcon {
                Layout.preferredWidth: 40
                Layout.preferredHeight: 40
            }

            ColumnLayout {
                Layout.fillWidth: true
                spacing: 1

                LorText {
                    text: "Lorvane"
                    font.family: LorFonts.rounded
                    font.pixelSize: 18
                    font.weight: Font.Bold
                }

                LorText {
                    Layout.preferredWidth: 0 // with a wide font it may run into the margin
                    text: "LESS TYPING. MORE YOU."
                    color: LorPalette.muted
                    font.pixelSize: 8
                    font.weight: LorFonts.semibold
                    font.letterSpacing: 1.2
                }
            }
        }

        LorText {
            Layout.leftMargin: 12
            Layout.bottomMargin: 12
            text: "WORKSPACE"
            color: LorPalette.muted
            font.pixelSize: 9
            font.weight: LorFonts.semibold
            font.letterSpacing: 1.6
        }

        Repeater {
            model: LorPages.all.length

            PageButton {
                required property int index

                visible: page !== LorPages.settings
                store: sidebar.store
                page: index
                selectedPage: sidebar.page
                onClicked: sidebar.choose(page)
            }
        }

        Item {
            Layout.fillHeight: true
            Layout.minimumHeight: 24
        }

        StatusPanel {
            Layout.bottomMargin: 16
            isRecording: sidebar.store.isRecording
        }

        PageButton {
            store: sidebar.store
            page: LorPages.settings
            selectedPage: sidebar.page
            onClicked: sidebar.choose(page)
        }

        LorText {
            Layout.topMargin: 18
            Layout.bottomMargin: 22
            Layout.leftMargin: 12
            text: "Made for your train of thought."
            color: LorPalette.muted
            font.pixelSize: 10
        }
    }
}
