#pragma once

#include "Core/Models.h"

#include <QList>
#include <QString>

/// From the raw transcript of a dictation to the text that is kept and pasted. Pure, re-entrant,
/// and without failure.
namespace lorvane::TextProcessor {

/// Removes fillers, expands the snippet that the whole text is the trigger of, replaces the phrases
/// of the dictionary, and mends the sentence's start and end. Of `settings` it reads removeFillers
/// and smartPunctuation. The result may be empty.
QString process(const QString &text, const QList<VocabularyEntry> &vocabulary,
                const QList<Snippet> &snippets, const AppSettings &settings);

} // namespace lorvane::TextProcessor
