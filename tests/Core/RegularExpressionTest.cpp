#include "Core/RegularExpression.h"

#include "Core/Printing.h"

namespace lorvane {
namespace {

using namespace Qt::StringLiterals;
using Ranges = QList<RegularExpression::Range>;

TEST(RegularExpressions, FindEveryMatchLeftToRight) {
    EXPECT_EQ(RegularExpression(u"a+"_s).matches(u"aab a"_s), (Ranges{{0, 2}, {4, 1}}));
    EXPECT_EQ(RegularExpression(u"a+"_s).matches(u"bcd"_s), Ranges());
    EXPECT_EQ(RegularExpression(u"a+"_s).matches(QStringView()), Ranges());
}

TEST(RegularExpressions, MatchCaseAsTold) {
    EXPECT_EQ(RegularExpression(u"k"_s).matches(u"K"_s), Ranges());
    EXPECT_EQ(RegularExpression(u"stra\u00DFe"_s, RegularExpression::Case::insensitive)
                  .matches(u"STRASSE"_s),
              (Ranges{{0, 7}}));
}

TEST(RegularExpressions, KnowUnicodeProperties) {
    EXPECT_EQ(RegularExpression(u"\\p{L}+"_s).matches(u"\u65E5\u672C 1 \U0001D518"_s),
              (Ranges{{0, 2}, {5, 2}}));
}

TEST(RegularExpressions, ReplaceEveryMatchAndFillInGroups) {
    EXPECT_EQ(RegularExpression(u" +([,.])"_s).replacingMatches(u"a  , b ."_s, u"$1"_s),
              u"a, b."_s);
    EXPECT_EQ(RegularExpression(u"x"_s).replacingMatches(u"axb"_s, QString()), u"ab"_s);
    EXPECT_EQ(RegularExpression(u"x"_s).replacingMatches(QString(), u"y"_s), QString());
}

TEST(RegularExpressions, ReplaceByMuchLongerText) {
    const QString replacement(1000, u'y');
    EXPECT_EQ(RegularExpression(u"x"_s).replacingMatches(u"xx"_s, replacement),
              replacement + replacement);
}

TEST(RegularExpressions, ThatDontCompileMatchNothing) {
    const RegularExpression broken(u"("_s);
    EXPECT_FALSE(broken.isValid());
    EXPECT_EQ(broken.matches(u"("_s), Ranges());
    EXPECT_EQ(broken.replacingMatches(u"("_s, u"x"_s), u"("_s);
}

TEST(RegularExpressions, LeaveTheTextWhenTheReplacementIsBroken) {
    EXPECT_EQ(RegularExpression(u"a"_s).replacingMatches(u"a"_s, u"$9"_s), u"a"_s);
}

TEST(EscapedPatterns, LetEveryCharacterStandForItself) {
    QString all;
    for (char16_t unit = 0; unit < 0x250; ++unit)
        all += QChar(unit);
    all += u"\u2028\u3000\u65E5\U0001F600"_s + QChar(0xD83D);
    const RegularExpression expression(RegularExpression::escapedPattern(all));
    ASSERT_TRUE(expression.isValid());
    EXPECT_EQ(expression.matches(all), (Ranges{{0, all.size()}}));
    for (const QChar unit : all.first(0x250)) {
        const RegularExpression single(RegularExpression::escapedPattern(QString(unit)));
        ASSERT_TRUE(single.isValid()) << static_cast<int>(unit.unicode());
        EXPECT_EQ(single.matches(all).size(), 1) << static_cast<int>(unit.unicode());
    }
}

TEST(EscapedPatterns, SurviveWhatWouldEndAQuotation) {
    const QString text = u"\\Qa\\E(b"_s;
    EXPECT_EQ(RegularExpression(RegularExpression::escapedPattern(text)).matches(text),
              (Ranges{{0, text.size()}}));
}

TEST(EscapedTemplates, LetDollarAndBackslashStandForThemselves) {
    const QString text = u"$1 \\n \\$ ${x} $$"_s;
    EXPECT_EQ(RegularExpression(u"a"_s).replacingMatches(u"-a-"_s,
                                                         RegularExpression::escapedTemplate(text)),
              u'-' + text + u'-');
}

} // namespace
} // namespace lorvane
