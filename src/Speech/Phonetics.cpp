#include "Speech/Phonetics.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <vector>

namespace lorvane {

namespace {

/// Letters that are not read one by one; C, J, S, T and Y are the sounds of "church", "judge",
/// "shoe", "think" and "yes". The first that fits is taken.
struct Spelling {
    std::u16string_view letters;
    std::u16string_view sounds;
    bool onlyAtStart = false;
};
constexpr std::array spellings{
    Spelling{u"kn", u"n", true}, Spelling{u"gn", u"n", true},  Spelling{u"wr", u"r", true},
    Spelling{u"ps", u"s", true}, Spelling{u"pn", u"n", true},  Spelling{u"x", u"z", true},
    Spelling{u"gh", u"g", true}, Spelling{u"mc", u"mk", true}, Spelling{u"y", u"Y", true},
    Spelling{u"tsch", u"C"},     Spelling{u"sch", u"S"},       Spelling{u"tch", u"C"},
    Spelling{u"tz", u"z"},       Spelling{u"dge", u"J"},       Spelling{u"szcz", u"S"},
    Spelling{u"cz", u"C"},       Spelling{u"sz", u"S"},        Spelling{u"sh", u"S"},
    Spelling{u"ch", u"C"},       Spelling{u"zh", u"S"},        Spelling{u"ph", u"f"},
    Spelling{u"th", u"T"},       Spelling{u"gh", u""},         Spelling{u"ck", u"k"},
    Spelling{u"qu", u"kw"},      Spelling{u"wh", u"w"},        Spelling{u"tion", u"San"},
    Spelling{u"ce", u"se"},      Spelling{u"ci", u"si"},       Spelling{u"cy", u"si"},
    Spelling{u"ge", u"Je"},      Spelling{u"gi", u"Ji"},       Spelling{u"gy", u"Ji"},
    Spelling{u"ee", u"i"},       Spelling{u"ea", u"i"},        Spelling{u"ie", u"i"},
    Spelling{u"ei", u"e"},       Spelling{u"ai", u"e"},        Spelling{u"ay", u"e"},
    Spelling{u"ey", u"i"},       Spelling{u"oo", u"u"},        Spelling{u"ou", u"u"},
    Spelling{u"au", u"o"},       Spelling{u"aw", u"o"},        Spelling{u"ow", u"o"},
    Spelling{u"oa", u"o"},       Spelling{u"oe", u"o"},        Spelling{u"ue", u"u"},
    Spelling{u"eu", u"u"},       Spelling{u"ew", u"u"},        Spelling{u"c", u"k"},
    Spelling{u"q", u"k"},        Spelling{u"x", u"ks"},        Spelling{u"j", u"J"},
    Spelling{u"y", u"i"},        Spelling{u"\u00F0", u"T"},    Spelling{u"\u00FE", u"T"},
    Spelling{u"\u00DF", u"s"},   Spelling{u"\u00E6", u"e"},    Spelling{u"\u00F8", u"o"},
    Spelling{u"\u0142", u"l"},   Spelling{u"\u0111", u"d"},    Spelling{u"\u0131", u"i"},
    Spelling{u"\u0153", u"o"},
};

bool isVowel(char16_t sound) {
    return std::u16string_view(u"aeiou").find(sound) != std::u16string_view::npos;
}

bool isIn(char16_t a, char16_t b, std::u16string_view group) {
    return group.find(a) != std::u16string_view::npos && group.find(b) != std::u16string_view::npos;
}

/// What it costs to take one sound for another, or to miss it: 1 for sounds that nobody confuses.
double substitution(char16_t a, char16_t b) {
    if (a == b)
        return 0;
    if (isVowel(a) && isVowel(b))
        return 0.35;
    for (const std::u16string_view close : {u"bp", u"dtT", u"gk", u"vfTw", u"zsT", u"JCS", u"sS",
                                            u"bv", u"JY", u"gJ", u"zJ", u"kC", u"kh", u"mn"}) {
        if (isIn(a, b, close))
            return 0.4;
    }
    if (isIn(a, b, u"lr") || isIn(a, b, u"nlr"))
        return 0.6;
    if ((isVowel(a) && isIn(b, b, u"Ywrhl")) || (isVowel(b) && isIn(a, a, u"Ywrhl")))
        return 0.6;
    return 1;
}

double omission(char16_t sound) {
    if (isVowel(sound) || sound == u'h' || sound == u'w' || sound == u'Y')
        return 0.4;
    return 0.9;
}

double weight(const std::u16string &sounds) {
    double sum = 0;
    for (const char16_t sound : sounds)
        sum += omission(sound);
    return sum;
}

} // namespace

std::u16string soundsOf(const QString &text) {
    std::u16string sounds;
    std::u16string letters;
    const auto flush = [&] {
        for (std::size_t i = 0; i < letters.size();) {
            const std::u16string_view rest = std::u16string_view(letters).substr(i);
            const auto *spelling =
                std::find_if(spellings.begin(), spellings.end(), [&](const Spelling &candidate) {
                    return rest.substr(0, candidate.letters.size()) == candidate.letters &&
                           (i == 0 || !candidate.onlyAtStart);
                });
            if (spelling != spellings.end()) {
                sounds += spelling->sounds;
                i += spelling->letters.size();
            } else {
                const bool isSilent = rest == u"e" && i > 1;
                if (!isSilent)
                    sounds += letters[i];
                ++i;
            }
        }
        letters.clear();
    };
    QChar last;
    for (const QChar c : text.normalized(QString::NormalizationForm_KD)) {
        if (last.isLower() && c.isUpper())
            flush(); // two words in one, such as "GitHub"
        last = c;
        if (c.isLetterOrNumber() || c.isSurrogate())
            letters += c.toLower().unicode();
        else if (!c.isMark() && c != u'\'' && c != QChar(0x2019))
            flush();
    }
    flush();
    sounds.erase(std::unique(sounds.begin(), sounds.end()), sounds.end());
    return sounds;
}

double likeness(const std::u16string &sounds, const std::u16string &otherSounds) {
    const double longest = std::max(weight(sounds), weight(otherSounds));
    if (longest == 0)
        return 0;
    std::vector<double> row(otherSounds.size() + 1);
    for (std::size_t j = 1; j < row.size(); ++j)
        row[j] = row[j - 1] + omission(otherSounds[j - 1]);
    for (const char16_t sound : sounds) {
        double diagonal = row[0];
        row[0] += omission(sound);
        for (std::size_t j = 1; j < row.size(); ++j) {
            const double above = row[j];
            row[j] = std::min({diagonal + substitution(sound, otherSounds[j - 1]),
                               above + omission(sound), row[j - 1] + omission(otherSounds[j - 1])});
            diagonal = above;
        }
    }
    return 1 - row.back() / longest;
}

} // namespace lorvane
