#pragma once

#include <QList>
#include <QString>

namespace lorvane {

/// One recognised word in time.
struct TranscribedWord {
    QString text;        ///< as the recogniser spelled it, with any punctuation it attached
    double start = 0;    ///< seconds from the start of the audio
    double duration = 0; ///< seconds

    double end() const { return start + duration; }

    bool operator==(const TranscribedWord &other) const;
};

/// The words of one recognition run so far, which the recogniser keeps revising.
class TranscriptAssembly {
public:
    TranscriptAssembly() = default;
    explicit TranscriptAssembly(QList<TranscribedWord> words) : words_(std::move(words)) {}

    const QList<TranscribedWord> &words() const { return words_; }

    /// For recognisers that report their whole result each time. An empty report changes nothing.
    void replaceSnapshot(const QList<TranscribedWord> &newWords);

    /// For recognisers that report a revised tail: what starts at its first word, less a slack of
    /// 0.02 s, or later, makes way for it. An empty report changes nothing.
    void update(const QList<TranscribedWord> &newWords);

    QString text() const { return render(words_); }

    /// The words with blanks between them, but with none before closing punctuation.
    static QString render(const QList<TranscribedWord> &words);

private:
    QList<TranscribedWord> words_;
};

} // namespace lorvane
