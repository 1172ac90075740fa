#include "Core/AudioChunk.h"
#include "Core/ChunkTranscriptAssembly.h"
#include "Core/Text.h"
#include "Speech/DecodedAudio.h"
#include "Speech/OwnWords.h"
#include "Speech/Prompts.h"
#include "Speech/SpeechEngine.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>

namespace lorvane {
namespace {

constexpr double overlap = 1;
constexpr double recordingSeconds = 180;

/// What was heard in a piece of the recording by itself, in recording time.
struct Window {
    AudioChunk chunk;
    QList<TimedWord> words;
};

/// Several minutes of a human voice: studio prompts one after another.
std::vector<float> recording(std::mt19937 &random) {
    std::vector<Prompt> order = prompts();
    std::shuffle(order.begin(), order.end(), random);
    std::vector<float> samples;
    for (const Prompt &prompt : order) {
        if (static_cast<double>(samples.size()) >= recordingSeconds * SpeechModel::sampleRate)
            break;
        const std::vector<float> said = decodedAudio(prompt.path);
        samples.insert(samples.end(), said.begin(), said.end());
    }
    return samples;
}

QList<TimedWord> shifted(QList<TimedWord> words, double offset) {
    for (TimedWord &word : words) {
        word.start += offset;
        word.end += offset;
    }
    return words;
}

QList<TranscribedWord> transcribed(const QList<TimedWord> &words) {
    QList<TranscribedWord> result;
    for (const TimedWord &word : words)
        result.append({word.text, word.start, word.end - word.start});
    return result;
}

/// What a chunk keeps that begins at `start` and ends at `end` and was heard as `window` was.
QList<TranscribedWord> own(const Window &window, double start, double end,
                           const SpeechContext &context) {
    QList<TimedWord> inside;
    for (const TimedWord &word : window.words) {
        if (word.start >= start)
            inside.append(word);
    }
    return transcribed(shifted(ownWords(shifted(inside, -start), end - start, context), start));
}

QList<Window> heardIn(SpeechEngine &engine, const std::vector<float> &samples, double core,
                      double shift) {
    const double duration = static_cast<double>(samples.size()) / SpeechModel::sampleRate;
    QList<Window> windows;
    for (AudioChunk chunk : AudioChunk::plan(duration - shift, core, overlap)) {
        chunk.start += shift;
        chunk.end += shift;
        chunk.coreStart += shift;
        chunk.coreEnd += shift;
        const auto first = static_cast<std::size_t>(chunk.start * SpeechModel::sampleRate);
        const auto last =
            std::min(static_cast<std::size_t>(chunk.end * SpeechModel::sampleRate), samples.size());
        const QList<TimedWord> words = engine.recognize(
            std::span(samples).subspan(first, last - first), liveModel, SpeechOptions(), {});
        windows.append({chunk, shifted(words, chunk.start)});
    }
    return windows;
}

QString key(const QString &text) { return Text::trimmedOfPunctuation(Text::folded(text)); }

bool agree(const TimedWord &word, const TimedWord &other) {
    return std::abs(word.start - other.start) < 0.299 && key(word.text) == key(other.text);
}

/// What became of the words that both sides of a seam have at the same time.
struct Counts {
    int seams = 0;
    int agreed = 0;
    int lost = 0;
    int doubled = 0;

    void print(const char *name) const {
        std::printf(
            "Figure: %s: %d seams, %d words that both sides agree on, %d lost, %d doubled\n", name,
            seams, agreed, lost, doubled);
    }
};

/// Stitches what two recognitions heard before and after a seam.
void stitch(const Window &before, const Window &after, double seam, Counts &counts) {
    ChunkTranscriptAssembly assembly;
    assembly.append(own(before, before.chunk.start, seam + overlap, {0, overlap, {}}));
    QList<TranscribedWord> written = assembly.words();
    for (TranscribedWord &word : written)
        word.start -= seam - overlap;
    assembly.append(own(after, seam - overlap, after.chunk.end, {overlap, 0, written}));
    const QList<TranscribedWord> &words = assembly.words();
    const auto copies = [&](const TimedWord &word) {
        return std::count_if(words.begin(), words.end(), [&](const TranscribedWord &other) {
            return other.text == word.text && std::abs(other.start - word.start) < 1e-6;
        });
    };
    ++counts.seams;
    for (const TimedWord &word : before.words) {
        for (const TimedWord &other : after.words) {
            if (std::abs(word.start - seam) > overlap || !agree(word, other))
                continue;
            const bool isOneTime =
                word.text == other.text && std::abs(word.start - other.start) < 2e-6;
            const auto count = isOneTime ? copies(word) : copies(word) + copies(other);
            ++counts.agreed;
            counts.lost += count == 0 ? 1 : 0;
            counts.doubled += count > 1 ? 1 : 0;
            if (count != 1) {
                std::printf("%d times “%s”, %.3f to %.3f s and %.3f to %.3f s; seam at %.3f s\n",
                            static_cast<int>(count), qPrintable(word.text), word.start, word.end,
                            other.start, other.end, seam);
            }
        }
    }
}

TEST(StitchedSeams, NeitherLoseNorDoubleWordsThatBothSidesAgreeOn) {
    ASSERT_GE(prompts().size(), 100U) << "asterisk-core-sounds-en-g722 is missing";
    const unsigned seed = std::random_device()();
    std::printf("seed %u\n", seed);
    std::mt19937 random(seed);
    OnnxRuntime runtime(1);
    SpeechEngine engine(runtime,
                        ModelFolder::find(QStringLiteral(LORVANE_MODELS), u"en"_qs).value(),
                        QStringLiteral(LORVANE_MODELS "/vad/silero.onnx"));
    const std::vector<float> samples = recording(random);

    // Pieces as long as those of a dictation, and shorter ones, for more true cuts.
    QList<Window> windows;
    Counts cut;
    for (const double core : {30., 13.}) {
        const double shift = std::uniform_real_distribution(0., 2.)(random);
        const QList<Window> heard = heardIn(engine, samples, core, shift);
        for (qsizetype i = 1; i < heard.size(); ++i)
            stitch(heard[i - 1], heard[i], heard[i].chunk.coreStart, cut);
        windows += heard;
    }
    cut.print("cut audio");

    Counts anywhere;
    std::uniform_real_distribution place(2 * overlap, recordingSeconds - 2 * overlap);
    while (anywhere.seams < 5000) {
        const double seam = place(random);
        QList<const Window *> around;
        for (const Window &window : windows) {
            if (window.chunk.start < seam - overlap && window.chunk.end > seam + overlap)
                around.append(&window);
        }
        std::shuffle(around.begin(), around.end(), random);
        if (around.size() > 1)
            stitch(*around[0], *around[1], seam, anywhere);
    }
    anywhere.print("seams anywhere");
    EXPECT_GE(anywhere.agreed, anywhere.seams);
    EXPECT_EQ(cut.lost, 0);
    EXPECT_EQ(cut.doubled, 0);
    EXPECT_EQ(anywhere.lost, 0);
    EXPECT_EQ(anywhere.doubled, 0);
}

} // namespace
} // namespace lorvane
