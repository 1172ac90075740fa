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

    /// The tokens of a text, as the model itself would spell it.
    std::vector<Token> encode(const QString &text) const;

private:
    QList<QByteArray> pieces_;
    QHash<QByteArray, Token> tokens_;
};

} // namespace lorvane
