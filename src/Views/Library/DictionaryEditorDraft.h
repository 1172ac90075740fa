#pragma once

#include "Core/Models.h"

#include <QList>
#include <QString>
#include <QUuid>

#include <optional>

namespace lorvane {

/// One line of the editor's list of variants.
struct DictionaryVariantInput {
    QUuid id = QUuid::createUuid();
    QString text;
};

/// What the dictionary's editor works on: a copy, so that the library changes only when it is
/// saved.
struct DictionaryEditorDraft {
    /// A draft of the entry, or, without one, of a new entry.
    explicit DictionaryEditorDraft(const std::optional<VocabularyEntry> &entry = std::nullopt);

    QUuid id = QUuid::createUuid();
    std::optional<QUuid> entryID; ///< absent for a new entry
    QList<DictionaryVariantInput> variants;
    QString replacement;
};

} // namespace lorvane
