#include "Core/TextProcessor.h"

#include "Core/Printing.h"

namespace lorvane {
namespace {

using namespace Qt::StringLiterals;
using Entries = QList<VocabularyEntry>;
using Snippets = QList<Snippet>;

const AppSettings both;
const AppSettings neither{.removeFillers = false, .smartPunctuation = false};
const AppSettings keepFillers{.removeFillers = false};
const Snippets signOff{{.trigger = u" Sign Off "_s, .content = u"Kind regards,\nThe team "_s}};

QString process(const QString &text, const Entries &vocabulary = {}, const Snippets &snippets = {},
                const AppSettings &settings = both) {
    return TextProcessor::process(text, vocabulary, snippets, settings);
}

/// The dictionary step alone.
QString replaced(const QString &text, const Entries &vocabulary) {
    return process(text, vocabulary, {}, neither);
}

TEST(FinalText, OfADictationWithFillersAndADictionary) {
    EXPECT_EQ(process(u"  um so the kube ctl pod uh failed  "_s, {{u"kube ctl"_s, u"kubectl"_s}}),
              u"So the kubectl pod failed."_s);
}

TEST(FinalText, KeepsTheCommasOfRemovedFillers) {
    EXPECT_EQ(process(u"Um, I think, uh, yes"_s), u", I think,, yes."_s);
}

TEST(FinalText, RemovesFillersOnlyAsWholeWords) {
    EXPECT_EQ(process(u"rumble um_ok um1 UM-hm"_s), u"Rumble um_ok um1 -hm."_s);
}

TEST(FinalText, PrefersTheLongerPhraseAndReplacesInOnePass) {
    const Entries entries{{u"new york"_s, u"NYC"_s}, {u"york"_s, u"Yorkshire"_s}};
    EXPECT_EQ(process(u"new york and york"_s, entries), u"NYC and Yorkshire."_s);
}

TEST(FinalText, IsTheSnippetWhoseTriggerIsTheWholeDictation) {
    EXPECT_EQ(process(u"sign off"_s, {}, signOff), u"Kind regards,\nThe team "_s);
}

TEST(FinalText, FindsSnippetsWithoutDiacritics) {
    EXPECT_EQ(process(u"s\u00EDgn \u00F3ff"_s, {}, signOff), u"Kind regards,\nThe team "_s);
    EXPECT_EQ(process(u"si\u0301gn o\u0301ff"_s, {}, signOff), u"Kind regards,\nThe team "_s);
}

TEST(FinalText, FindsNoSnippetBehindAFullStop) {
    EXPECT_EQ(process(u"sign off."_s, {}, signOff), u"Sign off."_s);
}

TEST(FinalText, RemovesFillersBeforeLookingForASnippet) {
    EXPECT_EQ(process(u"uh sign off"_s, {}, signOff), u"Kind regards,\nThe team "_s);
}

TEST(FinalText, EndsANumberWithAFullStop) { EXPECT_EQ(process(u"version 2"_s), u"Version 2."_s); }

TEST(FinalText, AddsNothingAfterABracket) {
    EXPECT_EQ(process(u"see (above)"_s), u"See (above)"_s);
}

TEST(FinalText, OfAFillerAloneIsEmpty) { EXPECT_EQ(process(u"um"_s), QString()); }

TEST(FinalText, KeepsRunsOfBlanksWhereFillersStay) {
    EXPECT_EQ(process(u"hello  world"_s, {}, {}, keepFillers), u"Hello  world."_s);
}

TEST(FinalText, IsNotPunctuatedWhereThatIsOff) {
    EXPECT_EQ(process(u"hello"_s, {}, {}, {.smartPunctuation = false}), u"hello"_s);
}

TEST(FinalText, OfNothingOrWhitespaceIsEmpty) {
    EXPECT_EQ(process(QString()), QString());
    EXPECT_EQ(process(u" \n\u3000"_s), QString());
    EXPECT_EQ(process(u" \n\u3000"_s, {}, signOff, neither), QString());
}

TEST(FinalText, OfNothingIsASnippetWithABlankTrigger) {
    EXPECT_EQ(process(u"um"_s, {}, {{.trigger = u" "_s, .content = u"x"_s}}), u"x"_s);
}

TEST(FinalText, IsOnlyTrimmedMendedAndPunctuatedWithoutADictionary) {
    EXPECT_EQ(process(u"\n so uh yes "_s), u"So yes."_s);
}

TEST(FillerRemoval, CollapsesBlanksAndTabsButNoLineBreaks) {
    EXPECT_EQ(process(u"a \t b\n\nc  \n  d"_s), u"A b\n\nc \n d."_s);
    EXPECT_EQ(process(u"a\tb"_s), u"A\tb."_s);
    EXPECT_EQ(process(u"a\u00A0\u00A0b"_s), u"A\u00A0\u00A0b."_s);
}

TEST(FillerRemoval, TakesBlanksBeforePunctuationButNotBeforeAColon) {
    EXPECT_EQ(process(u"a , b . c ; d ! e ?"_s), u"A, b. c; d! e?"_s);
    EXPECT_EQ(process(u"a : b"_s), u"A : b."_s);
    EXPECT_EQ(process(u"a uh, b um."_s), u"A, b."_s);
    EXPECT_EQ(process(u"a , b"_s, {}, {}, keepFillers), u"A , b."_s);
}

TEST(FillerRemoval, TakesEveryCaseAndAnyNeighbourThatIsNoWord) {
    EXPECT_EQ(process(u"(UM) 'Uh' um/uh"_s), u"() '' /"_s);
    EXPECT_EQ(process(u"\u00E9um um\u65E5 um\u0663"_s), u"\u00C9um um\u65E5 um\u0663."_s);
}

TEST(FillerRemoval, IsOffWhereTheSettingIs) {
    EXPECT_EQ(process(u"um yes"_s, {}, {}, keepFillers), u"Um yes."_s);
}

TEST(SnippetExpansion, ReturnsTheContentUntouchedByLaterSteps) {
    EXPECT_EQ(process(u"sig"_s, {{u"team"_s, u"TEAM"_s}, {u"sig"_s, u"SIG"_s}},
                      {{.trigger = u"SIG"_s, .content = u"  the team um  "_s}}),
              u"  the team um  "_s);
}

TEST(SnippetExpansion, TakesTheFirstThatMatches) {
    EXPECT_EQ(process(u"a"_s, {},
                      {{.trigger = u"b"_s, .content = u"0"_s},
                       {.trigger = u"A"_s, .content = u"1"_s},
                       {.trigger = u"a"_s, .content = u"2"_s}}),
              u"1"_s);
}

TEST(SnippetExpansion, TriesNoOtherAfterABlankContent) {
    EXPECT_EQ(
        process(u"a"_s, {{u"a"_s, u"alpha"_s}},
                {{.trigger = u"a"_s, .content = u" \n"_s}, {.trigger = u"a"_s, .content = u"2"_s}}),
        u"Alpha."_s);
}

TEST(SnippetExpansion, AsksForTheWholeText) {
    EXPECT_EQ(process(u"please sign off"_s, {}, signOff), u"Please sign off."_s);
}

TEST(SnippetExpansion, ComparesTheTextBeforeTheDictionary) {
    EXPECT_EQ(process(u"s o"_s, {{u"s o"_s, u"sign off"_s}}, signOff), u"Sign off."_s);
}

TEST(SnippetExpansion, FoldsCaseWithoutALocale) {
    EXPECT_EQ(process(u"STRASSE"_s, {}, {{.trigger = u"stra\u00DFe"_s, .content = u"x"_s}}),
              u"x"_s);
    EXPECT_EQ(process(u"\u0130"_s, {}, {{.trigger = u"i"_s, .content = u"x"_s}}), u"x"_s);
}

TEST(Dictionary, ReplacesInAnyCase) {
    EXPECT_EQ(process(u"run KUBE CTL"_s, {{u"kube ctl"_s, u"kubectl"_s}}), u"Run kubectl."_s);
}

TEST(Dictionary, LeavesTheCaseOfTheReplacementExceptAtTheStart) {
    EXPECT_EQ(process(u"kube ctl Kube Ctl"_s, {{u"kube ctl"_s, u"kubectl"_s}}),
              u"Kubectl kubectl."_s);
}

TEST(Dictionary, ReplacesAliasesAndThePhraseByThePhraseWithoutAReplacement) {
    EXPECT_EQ(replaced(u"lore vane and LORVANE"_s, {{u"Lorvane"_s, u""_s, {u"lore vane"_s}}}),
              u"Lorvane and Lorvane"_s);
}

TEST(Dictionary, TakesRegularExpressionCharactersLiterally) {
    EXPECT_EQ(replaced(u"a.b axb"_s, {{u"a.b"_s, u"X"_s}}), u"X axb"_s);
    EXPECT_EQ(replaced(u"a+ aa a+b"_s, {{u"a+"_s, u"X"_s}}), u"X aa a+b"_s);
    EXPECT_EQ(replaced(u"[x] (y) {z} ^$ \\d a|b"_s, {{u"[x]"_s, u"1"_s},
                                                     {u"(y)"_s, u"2"_s},
                                                     {u"{z}"_s, u"3"_s},
                                                     {u"^$"_s, u"4"_s},
                                                     {u"\\d"_s, u"5"_s},
                                                     {u"a|b"_s, u"6"_s}}),
              u"1 2 3 4 5 6"_s);
}

TEST(Dictionary, PutsReplacementsInLiterally) {
    EXPECT_EQ(replaced(u"pay now"_s, {{u"pay"_s, u"$1 \\1 \\$"_s}}), u"$1 \\1 \\$ now"_s);
}

TEST(Dictionary, AsksForTheSpacingOfThePhrase) {
    const Entries entries{{u"kube ctl"_s, u"kubectl"_s}};
    EXPECT_EQ(process(u"kube  ctl"_s, entries, {}, keepFillers), u"Kube  ctl."_s);
    EXPECT_EQ(process(u"kube  ctl"_s, entries), u"Kubectl."_s);
}

TEST(Dictionary, MatchesWholeWordsOfAnyScript) {
    const Entries entries{{u"cat"_s, u"X"_s}, {u"\u732B"_s, u"Y"_s}};
    EXPECT_EQ(replaced(u"cat concat cats cat1 _cat \u00E9cat cat\u05D0"_s, entries),
              u"X concat cats cat1 _cat \u00E9cat cat\u05D0"_s);
    EXPECT_EQ(replaced(u"cat-cat 'cat' cat's cat"_s, entries), u"X-X 'X' X's X"_s);
    EXPECT_EQ(replaced(u"\u732B \u732B\u732B \U0001D518cat \U0001F408cat"_s, entries),
              u"Y \u732B\u732B \U0001D518cat \U0001F408X"_s);
}

TEST(Dictionary, NeverScansAReplacementAgain) {
    EXPECT_EQ(replaced(u"a b"_s, {{u"a"_s, u"b"_s}, {u"b"_s, u"c"_s}, {u"c"_s, u"a"_s}}), u"b c"_s);
}

TEST(Dictionary, TakesTheLeftmostMatchFirst) {
    EXPECT_EQ(replaced(u"one two three"_s, {{u"two three"_s, u"X"_s}, {u"one two"_s, u"Y"_s}}),
              u"Y three"_s);
}

TEST(Dictionary, TakesTheEarlierEntryForTheSamePhrase) {
    EXPECT_EQ(replaced(u"Cat"_s, {{u"cat"_s, u"first"_s}, {u"CAT"_s, u"second"_s}}), u"first"_s);
}

TEST(Dictionary, MeasuresPhrasesInUserPerceivedCharacters) {
    // One accent or three joined people more, but no character more: the list's order decides.
    const VocabularyEntry plain(u"cafe"_s, u"X"_s), accented(u"cafe\u0301"_s, u"Y"_s);
    EXPECT_EQ(replaced(u"cafe\u0301"_s, {plain, accented}), u"X\u0301"_s);
    EXPECT_EQ(replaced(u"cafe\u0301"_s, {accented, plain}), u"Y"_s);
    const QString family = u"\U0001F468\u200D\U0001F469\u200D\U0001F467"_s;
    const VocabularyEntry man(u"\U0001F468"_s, u"M"_s), all(family, u"F"_s);
    EXPECT_EQ(replaced(family, {man, all}), u'M' + family.sliced(2));
    EXPECT_EQ(replaced(family, {all, man}), u"F"_s);
    EXPECT_EQ(replaced(family + u'!', {man, all, {family + u'!', u"G"_s}}), u"G"_s);
}

TEST(Dictionary, EndsAReplacementWithTheFullStopOfTheSentence) {
    EXPECT_EQ(process(u"ask bob"_s, {{u"bob"_s, u"Robert"_s}}), u"Ask Robert."_s);
    EXPECT_EQ(process(u"ask bob"_s, {{u"bob"_s, u"Robert!"_s}}), u"Ask Robert!"_s);
}

TEST(Dictionary, ResolvesMatchesByFullCaseFolding) {
    EXPECT_EQ(replaced(u"STRASSE"_s, {{u"stra\u00DFe"_s, u"street"_s}}), u"street"_s);
    EXPECT_EQ(replaced(u"\u039F\u0394\u039F\u03A3"_s, {{u"\u03BF\u03B4\u03BF\u03C2"_s, u"road"_s}}),
              u"road"_s);
}

TEST(Dictionary, DeletesNothingThatItDoesNotKnow) {
    EXPECT_EQ(replaced(u"nothing here"_s, {{u"else"_s, u"X"_s}}), u"nothing here"_s);
    EXPECT_EQ(replaced(u"nothing here"_s, {{u" "_s, u"X"_s}}), u"nothing here"_s);
}

TEST(Dictionary, AppliesEveryPhraseOfALargeOne) {
    Entries entries;
    QStringList heard, wanted;
    for (int i = 0; i < 300; ++i) {
        entries.append({QStringLiteral("heard%1").arg(i), QStringLiteral("wanted%1").arg(i)});
        heard.append(QStringLiteral("HEARD%1").arg(i));
        wanted.append(QStringLiteral("wanted%1").arg(i));
    }
    EXPECT_EQ(replaced(heard.join(u' '), entries), wanted.join(u' '));
}

TEST(SmartPunctuation, MayLengthenTheFirstCharacter) {
    EXPECT_EQ(process(u"\u00DFeta"_s), u"SSeta."_s);
    EXPECT_EQ(process(u"e\u0301t\u00E9"_s), u"E\u0301t\u00E9."_s);
}

TEST(SmartPunctuation, KeepsADigitOrPunctuationAtTheStart) {
    EXPECT_EQ(process(u"2 apples"_s), u"2 apples."_s);
    EXPECT_EQ(process(u"(maybe) yes"_s), u"(maybe) yes."_s);
}

TEST(SmartPunctuation, AddsAFullStopAfterLettersAndNumbersOfAnyScript) {
    EXPECT_EQ(process(u"\u65E5\u672C\u8A9E"_s), u"\u65E5\u672C\u8A9E."_s);
    EXPECT_EQ(process(u"\u05E9\u05DC\u05D5\u05DD"_s), u"\u05E9\u05DC\u05D5\u05DD."_s);
    EXPECT_EQ(process(u"cafe\u0301"_s), u"Cafe\u0301."_s);
    EXPECT_EQ(process(u"\u0664"_s), u"\u0664."_s);
}

TEST(SmartPunctuation, AddsNothingAfterAnythingElse) {
    for (const QString &text :
         {u"A!"_s, u"A\u201D"_s, u"A\u2026"_s, u"A\U0001F600"_s, u"A%"_s, u"A_"_s})
        EXPECT_EQ(process(text), text);
}

TEST(FinalText, KeepsNulsAndUnpairedSurrogates) {
    const QString nul(QChar(u'\0'));
    const QString high(QChar(0xD83D)), low(QChar(0xDE00));
    const QString text = u"A"_s + nul + u' ' + high + u" cat "_s + low + nul + u'b';
    EXPECT_EQ(process(text, {{u"cat"_s, u"dog"_s}}),
              u"A"_s + nul + u' ' + high + u" dog "_s + low + nul + u"b."_s);
    EXPECT_EQ(replaced(text, {{high, u"X"_s}, {u"a"_s + nul, u"Y"_s}}),
              u"Y "_s + u"X cat "_s + low + nul + u'b');
}

} // namespace
} // namespace lorvane
