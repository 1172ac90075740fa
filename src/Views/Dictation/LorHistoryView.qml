import QtQuick
import QtQuick.Layouts
import Lorvane
import Lorvane.Models

// All saved dictations, newest first.
LorListPage {
    id: page

    required property QtObject store

    spacing: 14
    model: history

    HistoryModel {
        id: history
        store: page.store
    }

    LorConfirmation {
        id: confirmClear

        host: page
        title: "Delete all dictation history?"
        message: "This removes all saved dictations from Lorvane. This can’t be undone."
        action: "Delete all history"
        onConfirmed: page.store.clearHistory()
    }

    header: LorListSection {
        list: page
        bottomPadding: history.isEmpty ? 0 : spacing

        LorPageHeader {
            eyebrow: "A place for every thought"
            title: "History"
            subtitle: "Find, copy, and revisit the words you’ve captured."
        }

        RowLayout {
            Layout.fillWidth: true
            spacing: 12

            LorSearchField {
                placeholder: "Search your dictations"
                onTextChanged: history.search = text
            }

            LorStandardButton {
                text: "Export"
                symbol: "square.and.arrow.up"
                enabled: history.hasHistory
                // The dialog keeps whoever opens it; a screen reader mustn't wait for its end.
                onClicked: Qt.callLater(page.store.exportHistory)
            }

            LorMenuButton {
                implicitWidth: 24
                text: "History options"
                symbol: "ellipsis"

                LorMenuItem {
                    text: "Delete all history…"
                    destructive: true
                    enabled: history.hasHistory
                    onTriggered: confirmClear.isPresented = true
                }
            }
        }

        LorCard {
            visible: history.isEmpty

            LorEmptyState {
                icon: history.emptyIcon
                title: history.emptyTitle
                message: history.emptyMessage
            }
        }

        LorDetail {
            visible: !history.isEmpty
            text: history.countLabel
        }
    }

    delegate: HistoryCard {
        onCopy: row => history.copy(row)
        onRemove: (row, reason) => {
            history.remove(row);
            page.focusRow(row, reason);
        }
    }
}
