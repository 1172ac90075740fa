#pragma once

#include <QString>
#include <QStringView>

/// What this program means by equal, blank, word and character. All of it follows Unicode's data as
/// ICU has it, and none of it asks for a locale. Any sequence of UTF-16 units is taken, unpaired
/// surrogates and NUL among them.
namespace lorvane::Text {

/// Without the Unicode white space and line breaks at both ends.
QString trimmed(QStringView text);

/// Without the Unicode punctuation, white space and line breaks at both ends.
QString trimmedOfPunctuation(QStringView text);

/// True when nothing is left of it after trimming.
bool isBlank(QStringView text);

/// The number of maximal runs of characters that aren't white space.
qsizetype wordCount(QStringView text);

/// The number of user-perceived characters (extended grapheme clusters).
qsizetype characterCount(QStringView text);

/// The equality of strings throughout the program: a composed and a decomposed "é" are equal.
bool equalsCanonically(QStringView left, QStringView right);

/// Canonical caseless equality, by full case folding ("ß" equals "SS"); diacritics count.
bool equalsCaseInsensitively(QStringView left, QStringView right);

/// Equal for two texts, unit by unit, exactly when equalsCanonically holds for them: a key to hash.
QString canonicalKey(QStringView text);

/// Equal for two texts, unit by unit, exactly when equalsCaseInsensitively holds for them.
QString caselessKey(QStringView text);

/// In the case that case-insensitive matching compares in: a text that such a match of a phrase is
/// in, so folded, contains the phrase, so folded.
QString caseFolded(QStringView text);

/// Without case and diacritics, to compare unit by unit. A diacritic is a mark on a Latin, Greek,
/// Cyrillic, Hebrew or Arabic letter; elsewhere marks spell, as in か and が, and stay.
QString folded(QStringView text);

/// The text with its first user-perceived character in upper case, which may be longer: "ß", "SS".
QString withUppercaseStart(QStringView text);

/// Whether the last user-perceived character is a letter or a number, with whatever marks it bears.
bool endsInLetterOrNumber(QStringView text);

} // namespace lorvane::Text
