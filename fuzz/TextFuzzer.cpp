#include "Core/Text.h"
#include "Core/TextProcessor.h"

#include <cstdlib>

using namespace lorvane;

/// The first byte is the settings. Of the lines that follow, those that start with "d" and a tab
/// are dictionary entries (phrase, replacement, aliases), those with "s" snippets, their fields
/// parted by tabs; the others are the transcript. Control-A and Control-B stand for the two halves
/// of a surrogate pair.
extern "C" int LLVMFuzzerTestOneInput(const unsigned char *data, std::size_t size) {
    if (size == 0)
        return 0;
    const AppSettings settings{.removeFillers = (data[0] & 1) != 0,
                               .smartPunctuation = (data[0] & 2) != 0};
    QString input = QString::fromUtf8(reinterpret_cast<const char *>(data + 1),
                                      static_cast<qsizetype>(size - 1));
    input.replace(QChar(1), QChar(0xD83D)).replace(QChar(2), QChar(0xDE00));

    QStringList transcript;
    QList<VocabularyEntry> vocabulary;
    QList<Snippet> snippets;
    for (const QString &line : input.split(u'\n')) {
        QStringList fields = line.split(u'\t');
        const QString kind = fields.takeFirst();
        if (kind == u'd' && fields.size() > 1) {
            const QString phrase = fields.takeFirst(), replacement = fields.takeFirst();
            vocabulary.append({phrase, replacement, fields});
        } else if (kind == u's' && fields.size() > 1) {
            snippets.append({.trigger = fields.at(0), .content = fields.at(1)});
        } else {
            transcript.append(line);
        }
    }

    const QString text = transcript.join(u'\n');
    const QString output = TextProcessor::process(text, vocabulary, snippets, settings);
    const bool hasNothingToDo = !settings.removeFillers && !settings.smartPunctuation &&
                                vocabulary.isEmpty() && snippets.isEmpty();
    if (hasNothingToDo && output != Text::trimmed(text))
        std::abort();
    return 0;
}
