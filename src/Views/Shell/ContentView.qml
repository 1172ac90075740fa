import QtQuick
import QtQuick.Layouts
import Lorvane

// The root of the window: the sidebar, a hairline and the page with the message above it.
Rectangle {
    id: content

    required property QtObject store

    property int page: LorPages.home

    readonly property bool hasError: store.errorMessage !== ""

    color: LorPalette.canvas

    RowLayout {
        anchors.fill: parent
        spacing: 0

        Sidebar {
            Layout.fillHeight: true
            store: content.store
            page: content.page
            onChoose: page => content.page = page
        }

        Rectangle {
            Layout.fillHeight: true
            implicitWidth: 1
            color: LorPalette.line
        }

        ColumnLayout {
            spacing: 0

            MessageBanner {
                visible: message !== ""
                message: content.hasError ? content.store.errorMessage : content.store.statusMessage
                isError: content.hasError
                onDismiss: {
                    // The focus goes back to where it was on the page.
                    loader.forceActiveFocus();
                    if (content.hasError)
                        content.store.dismissErrorMessage();
                    else
                        content.store.dismissStatusMessage();
                }
            }

            Loader {
                id: loader

                Layout.fillWidth: true
                Layout.fillHeight: true
                focus: true
                Component.onCompleted: content.showPage()
            }
        }
    }

    // A page that is left loses its state.
    function showPage() {
        loader.setSource(LorPages.all[page].source, { store: store });
    }
    onPageChanged: showPage()

    Connections {
        target: loader.item
        ignoreUnknownSignals: true

        function onShowHistory() {
            content.page = LorPages.history;
        }
    }
}
