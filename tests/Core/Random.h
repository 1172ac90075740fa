#pragma once

#include "Core/Models.h"

#include <gtest/gtest.h>

#include <iostream>
#include <iterator>
#include <random>

namespace lorvane {

/// Random input from a seed that is printed. --gtest_random_seed=N runs the same input again.
class Random {
public:
    Random() : seed_(givenSeed()), engine_(seed_) {
        std::cout << "random seed " << seed_ << " (repeat with --gtest_random_seed=" << seed_
                  << ")\n";
    }

    int number(int least, int most) {
        return std::uniform_int_distribution<int>(least, most)(engine_);
    }
    double real(double least, double most) {
        return std::uniform_real_distribution<double>(least, most)(engine_);
    }
    bool coin() { return number(0, 1) == 1; }

    template <typename List>
    auto one(const List &list) {
        return *std::next(list.begin(), number(0, static_cast<int>(list.size()) - 1));
    }

    /// Up to `longest` pieces of every kind that Unicode has, unpaired surrogates and NUL too.
    QString text(int longest) {
        static const QStringList pieces{
            QStringLiteral("a"),          QStringLiteral("B"),
            QStringLiteral("um"),         QStringLiteral("uh"),
            QStringLiteral(" "),          QStringLiteral("  "),
            QStringLiteral("\n"),         QStringLiteral("\t"),
            QStringLiteral(","),          QStringLiteral(" ."),
            QStringLiteral("_"),          QStringLiteral("7"),
            QStringLiteral("\u00DF"),     QStringLiteral("\u00E9"),
            QStringLiteral("\u0301"),     QStringLiteral("\u0130"),
            QStringLiteral("\u0131"),     QStringLiteral("\u03A3"),
            QStringLiteral("\u03C2"),     QStringLiteral("\u05E9\u05C1"),
            QStringLiteral("\u304C"),     QStringLiteral("\u304B\u3099"),
            QStringLiteral("\u3000"),     QStringLiteral("\u2028"),
            QStringLiteral("\u200D"),     QStringLiteral("\uFEFF"),
            QStringLiteral("\U0001F468"), QStringLiteral("\U0001F1E6"),
            QStringLiteral("\"\\/"),      QStringLiteral("$1"),
            QStringLiteral("(a+)*"),      QStringLiteral("\\Q"),
            QString(QChar(0xD83D)),       QString(QChar(0xDE00)),
            QString(QChar(u'\0')),        QString(QChar(0x1F))};
        QString text;
        for (int i = number(0, longest); i > 0; --i)
            text += coin() ? one(pieces) : QString(QChar(static_cast<char16_t>(number(0, 0xFFFF))));
        return text;
    }

    QStringList texts(int most, int longest) {
        QStringList list;
        for (int i = number(0, most); i > 0; --i)
            list.append(text(longest));
        return list;
    }

    QUuid uuid() {
        std::array<quint32, 4> words;
        for (quint32 &word : words)
            word = static_cast<quint32>(engine_());
        return QUuid::fromRfc4122(
            QByteArrayView(reinterpret_cast<const char *>(words.data()), sizeof words));
    }

    QDateTime date() {
        const auto milliseconds = std::uniform_int_distribution<qint64>(
            -62'167'219'200'000, 253'402'300'799'999)(engine_); // the years 0 to 9999
        return QDateTime::fromMSecsSinceEpoch(milliseconds, Qt::UTC);
    }

    VocabularyEntry entry() { return {text(6), coin() ? text(4) : QString(), texts(4, 5), uuid()}; }

    QList<VocabularyEntry> entries(int most) {
        QList<VocabularyEntry> list;
        for (int i = number(0, most); i > 0; --i)
            list.append(entry());
        return list;
    }

    AppSnapshot snapshot() {
        AppSnapshot snapshot;
        for (int i = number(0, 5); i > 0; --i)
            snapshot.history.append({uuid(), date(), text(40), real(-10, 1e6)});
        snapshot.vocabulary = entries(5);
        for (int i = number(0, 5); i > 0; --i)
            snapshot.snippets.append({uuid(), text(10), text(30)});
        snapshot.scratchpad = text(60);
        snapshot.settings = {text(6), coin(), coin(), coin()};
        return snapshot;
    }

private:
    static std::uint32_t givenSeed() {
        const int given = GTEST_FLAG_GET(random_seed);
        return given != 0 ? static_cast<std::uint32_t>(given) : std::random_device()() % 99999 + 1;
    }

    std::uint32_t seed_;
    std::mt19937 engine_;
};

} // namespace lorvane
