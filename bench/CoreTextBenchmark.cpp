#include "Core/ChunkTranscriptAssembly.h"
#include "Core/TextProcessor.h"

#include <benchmark/benchmark.h>

namespace lorvane {
namespace {

// --- The final text

QString word(int number) {
    // Pronounceable and all different, with every start that a dictionary has.
    static constexpr char16_t consonants[] = u"bcdfghjklmnpqrstvwxz";
    static constexpr char16_t vowels[] = u"aeiou";
    QString text;
    for (int rest = number + 100; rest > 0; rest /= 100) {
        text += QChar(consonants[rest % 20]);
        text += QChar(vowels[rest / 20 % 5]);
    }
    return text;
}

QList<VocabularyEntry> dictionary(int phrases) {
    QList<VocabularyEntry> entries;
    for (int i = 0; i < phrases / 2; ++i)
        entries.append(
            {word(2 * i) + u' ' + word(2 * i + 1), word(i).toUpper(), {word(7 * i + 3) + word(i)}});
    return entries;
}

/// Text in which a phrase of the dictionary stands every `distance` words.
QString transcript(qsizetype characters, int distance, const QList<VocabularyEntry> &entries) {
    QString text;
    for (int i = 0; text.size() < characters; ++i) {
        text += !entries.isEmpty() && i % distance == 0 ? entries.at(i % entries.size()).phrase
                                                        : word(31 * i % 5000);
        text += u' ';
    }
    return text.first(characters);
}

/// Arguments: characters, phrases, and how many words apart phrases are heard.
void process(benchmark::State &state) {
    const QList<VocabularyEntry> entries = dictionary(static_cast<int>(state.range(1)));
    const QString text = transcript(state.range(0), static_cast<int>(state.range(2)), entries);
    for ([[maybe_unused]] auto _ : state)
        benchmark::DoNotOptimize(TextProcessor::process(text, entries, {}, AppSettings()));
    state.SetComplexityN(state.range(0));
}
BENCHMARK(process)
    ->ArgNames({"characters", "phrases", "apart"})
    ->Args({100, 0, 1})
    ->Args({100, 2000, 10})
    ->Args({20'000, 2000, 10})
    ->Args({20'000, 2000, 1})
    ->Unit(benchmark::kMillisecond);
BENCHMARK(process)
    ->Name("process growing")
    ->ArgsProduct({{20'000, 40'000, 80'000, 160'000}, {2000}, {10}})
    ->Complexity()
    ->Unit(benchmark::kMillisecond);

// --- The stitching of chunks

/// Chunks of 30 s of speech, 2.5 words a second, of which the last 2 s are heard again.
QList<QList<TranscribedWord>> recording(qsizetype chunks) {
    QList<QList<TranscribedWord>> result;
    for (qsizetype chunk = 0; chunk < chunks; ++chunk) {
        QList<TranscribedWord> words;
        for (int i = 0; i < 80; ++i) {
            const qsizetype number = 75 * chunk + i;
            words.append(
                {word(static_cast<int>(number % 4000)), 0.4 * static_cast<double>(number), 0.3});
        }
        result.append(words);
    }
    return result;
}

void append(benchmark::State &state) {
    const QList<QList<TranscribedWord>> chunks = recording(state.range(0));
    for ([[maybe_unused]] auto _ : state) {
        ChunkTranscriptAssembly assembly;
        for (const QList<TranscribedWord> &words : chunks)
            assembly.append(words);
        if (assembly.words().size() != 75 * chunks.size() + 5)
            return state.SkipWithError("a seam was missed");
    }
    state.SetComplexityN(state.range(0));
}
BENCHMARK(append)
    ->ArgName("chunks")
    ->Arg(60)
    ->Arg(120)
    ->Arg(240)
    ->Arg(480)
    ->Arg(960)
    ->Complexity()
    ->Unit(benchmark::kMillisecond);

} // namespace
} // namespace lorvane
