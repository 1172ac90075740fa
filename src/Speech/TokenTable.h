#pragma once

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QString>

#include <vector>

namespace lorvane {

using Token = int;

/// The pieces of text that the model writes with. Immutable: any thread.
class TokenTable {
public:
    static constexpr Token begin = 1;
    static constexpr Token end = 2;

    /// Reads a table of one piece a line. Throws LocalizedError.
    explicit TokenTable(const QString &path);

    /// The UTF-8 bytes that a token stands for, possibly a part of a character; a word's first
    /// token begins with a blank. Empty for a control token.
    QByteArray bytes(Token token) const;

    /// Whether a word begins with the token.
    bool beginsWord(Token token) const { return kind(token) == Kind::Beginning; }

    /// Whether the token is more of the word before it, not a mark or a blank.
    bool continuesWord(Token token) const { return kind(token) == Kind::Continuation; }

    /// The tokens of a text, as the model itself would spell it.
    std::vector<Token> encode(const QString &text) const;

private:
    enum class Kind : char { Beginning, Continuation, Other };

    Kind kind(Token token) const {
        return token >= 0 && token < pieces_.size() ? kinds_[static_cast<std::size_t>(token)]
                                                    : Kind::Other;
    }

    QList<QByteArray> pieces_;
    QHash<QByteArray, Token> tokens_;
    std::vector<Kind> kinds_;
};

} // namespace lorvane
