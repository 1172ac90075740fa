import QtQuick
import QtQuick.Layouts
import Lorvane
import Lorvane.Models

// The names and phrases that are spelled as the user wants them.
LorListPage {
    id: page

    required property QtObject store

    model: dictionary

    DictionaryModel {
        id: dictionary
        store: page.store
    }

    DictionaryEditor {
        id: entryEditor
        store: page.store
    }

    Loader {
        active: entryEditor.isOpen
        sourceComponent: LorDictionaryEditor {
            host: page
            editor: entryEditor
        }
    }

    header: LorListSection {
        list: page
        bottomPadding: dictionary.isEmpty ? 0 : spacing

        LorPageHeader {
            eyebrow: "Your words, understood"
            title: "Dictionary"
            subtitle: "Give names, technical terms, and favorite phrases their proper spelling."
        }

        RowLayout {
            Layout.fillWidth: true
            spacing: 12

            LorSearchField {
                placeholder: "Search your vocabulary"
                onTextChanged: dictionary.search = text
            }

            LorPrimaryButton {
                text: "Add name or phrase"
                symbol: "plus"
                onClicked: entryEditor.create()
            }
        }

        LorCard {
            visible: dictionary.isEmpty

            LorEmptyState {
                icon: "character.book.closed"
                title: dictionary.emptyTitle
                message: dictionary.emptyMessage
            }
        }
    }

    delegate: DictionaryEntry {
        onCopy: row => dictionary.copy(row)
        onEdit: row => dictionary.edit(row, entryEditor)
        onRemove: (row, reason) => {
            dictionary.remove(row);
            page.focusRow(row, reason);
        }
    }

    footer: LorListSection {
        list: page
        topPadding: spacing

        LorNote {
            symbol: "info.circle"
            text: "Variants help recognition. Name corrections apply when you finish dictating."
        }
    }
}
