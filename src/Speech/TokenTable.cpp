#include "Speech/TokenTable.h"

#include "Core/LocalizedError.h"

#include <QFile>

#include <cctype>
#include <limits>

namespace lorvane {

namespace {

constexpr char blank[] = "\xE2\x96\x81"; // U+2581 stands for a blank in the table

/// The tokens <unk>, <s> and </s>; then one for each of the 256 bytes.
constexpr Token firstByte = 3;
constexpr Token firstText = firstByte + 256;

} // namespace

TokenTable::TokenTable(const QString &path) {
    QFile file(path);
    if (file.open(QIODevice::ReadOnly))
        pieces_ = file.readAll().split('\n');
    if (pieces_.size() <= firstText)
        throw LocalizedError(u"The speech model file “%1” is missing or damaged."_qs.arg(path));
    tokens_.reserve(pieces_.size());
    for (Token token = firstText; token < pieces_.size(); ++token)
        tokens_.insert(pieces_[token], token);
    kinds_.assign(static_cast<std::size_t>(pieces_.size()), Kind::Other);
    for (Token token = firstByte; token < pieces_.size(); ++token) {
        const QByteArray text = bytes(token);
        Kind &kind = kinds_[static_cast<std::size_t>(token)];
        if (text.startsWith(' '))
            kind = Kind::Beginning;
        else if (!text.isEmpty() && (static_cast<unsigned char>(text[0]) >= 0x80 ||
                                     std::isalnum(static_cast<unsigned char>(text[0]))))
            kind = Kind::Continuation;
    }
}

QByteArray TokenTable::bytes(Token token) const {
    if (token < firstByte || token >= pieces_.size())
        return {};
    if (token < firstText)
        return QByteArray(1, static_cast<char>(token - firstByte));
    return QByteArray(pieces_[token]).replace(blank, " ");
}

std::vector<Token> TokenTable::encode(const QString &text) const {
    std::vector<QByteArray> parts;
    for (const char32_t character : (u' ' + text.simplified()).toStdU32String()) {
        const QByteArray part = QString::fromUcs4(&character, 1).toUtf8();
        parts.push_back(part == " " ? QByteArray(blank) : part);
    }

    // The lowest token is the most frequent piece: it is joined first.
    while (true) {
        Token best = std::numeric_limits<Token>::max();
        std::size_t place = 0;
        for (std::size_t i = 0; i + 1 < parts.size(); ++i) {
            const auto token = tokens_.find(parts[i] + parts[i + 1]);
            if (token != tokens_.end() && *token < best) {
                best = *token;
                place = i;
            }
        }
        if (best == std::numeric_limits<Token>::max())
            break;
        parts[place] += parts[place + 1];
        parts.erase(parts.begin() + static_cast<std::ptrdiff_t>(place) + 1);
    }

    std::vector<Token> encoded;
    for (const QByteArray &part : parts) {
        const auto token = tokens_.find(part);
        if (token != tokens_.end()) {
            encoded.push_back(*token);
            continue;
        }
        for (const char byte : part)
            encoded.push_back(firstByte + static_cast<unsigned char>(byte));
    }
    return encoded;
}

} // namespace lorvane
