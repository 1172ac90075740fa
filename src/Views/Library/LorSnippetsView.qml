import QtQuick
import QtQuick.Layouts
import Lorvane
import Lorvane.Models

// Short spoken phrases, and the texts that they become.
LorListPage {
    id: page

    required property QtObject store

    spacing: 14
    model: snippets

    SnippetsModel {
        id: snippets
        store: page.store
    }

    SnippetEditor {
        id: snippetEditor
        store: page.store
    }

    Loader {
        active: snippetEditor.isOpen
        sourceComponent: LorSnippetEditor {
            host: page
            editor: snippetEditor
        }
    }

    header: LorListSection {
        list: page
        bottomPadding: snippets.isEmpty ? 0 : spacing

        LorPageHeader {
            eyebrow: "Say a little. Write a lot."
            title: "Snippets"
            subtitle: "Turn short spoken phrases into the text you find yourself repeating."
        }

        RowLayout {
            Layout.fillWidth: true
            spacing: 12

            LorSearchField {
                placeholder: "Search your snippets"
                onTextChanged: snippets.search = text
            }

            LorPrimaryButton {
                text: "New snippet"
                symbol: "plus"
                onClicked: snippetEditor.create()
            }
        }

        LorCard {
            visible: snippets.isEmpty

            LorEmptyState {
                icon: "text.bubble"
                title: snippets.emptyTitle
                message: snippets.emptyMessage
            }
        }
    }

    delegate: SnippetCard {
        onCopy: row => snippets.copy(row)
        onEdit: row => snippets.edit(row, snippetEditor)
        onRemove: (row, reason) => {
            snippets.remove(row);
            page.focusRow(row, reason);
        }
    }

    footer: LorListSection {
        list: page
        topPadding: spacing

        LorNote {
            symbol: "info.circle"
            text: "Dictate a trigger phrase on its own. It expands when you finish."
        }
    }
}
