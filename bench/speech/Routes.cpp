#include "Routes.h"

#include "Core/AudioChunk.h"
#include "Core/ChunkTranscriptAssembly.h"
#include "Core/LocalizedError.h"
#include "Platform/Linux/SndfileAudioFile.h"
#include "Speech/FileAnalysis.h"

#include <QTemporaryDir>

#include <algorithm>
#include <future>

namespace lorvane {

namespace {

class WholeRoute : public Route {
    using Route::Route;
    Heard hearOnWorker(const std::vector<float> &samples, const QStringList &phrases) override {
        const QList<TimedWord> words = recognize(samples, phrases);
        return {makeResult(words, true).formattedString, words};
    }
};

class AnalyserRoute : public Route {
    using Route::Route;
    Heard hearOnWorker(const std::vector<float> &samples, const QStringList &phrases) override {
        const QString path = folder_.filePath(u"recording.caf"_qs);
        audioFile_.openForWriting(path, {SpeechModel::sampleRate, 1})
            ->write({samples.data(), static_cast<qsizetype>(samples.size()), 1});
        const auto file = audioFile_.openForReading(path);
        QStringList texts;
        FileAnalysis(file->format(), engine(), phrases)
            .finish(*file, [&](const SpeechAnalysisResult &result) { texts.append(result.text); },
                    {});
        return {texts.join(u' '), {}};
    }

    SndfileAudioFile audioFile_;
    const QTemporaryDir folder_;
};

class ChunkedRoute : public Route {
    using Route::Route;
    Heard hearOnWorker(const std::vector<float> &samples, const QStringList &phrases) override {
        const auto place = [&](double time) {
            return std::min(static_cast<std::size_t>(time * SpeechModel::sampleRate),
                            samples.size());
        };
        ChunkTranscriptAssembly assembly;
        for (const AudioChunk &chunk :
             AudioChunk::plan(static_cast<double>(samples.size()) / SpeechModel::sampleRate)) {
            const auto part = std::span(samples).subspan(place(chunk.start),
                                                         place(chunk.end) - place(chunk.start));
            SpeechContext context{chunk.coreStart - chunk.start, chunk.end - chunk.coreEnd, {}};
            for (const TranscribedWord &word : assembly.words())
                context.written.append({word.text, word.start - chunk.start, word.duration});
            QList<TranscribedWord> words;
            for (const TimedWord &word : recognize(part, phrases, context))
                words.append({word.text, word.start + chunk.start, word.end - word.start});
            assembly.append(words);
        }
        Heard heard{assembly.text(), {}};
        for (const TranscribedWord &word : assembly.words())
            heard.words.append({word.text, word.start, word.start + word.duration});
        return heard;
    }
};

} // namespace

std::unique_ptr<Route> makeRoute(const QString &name, const ModelFolder &folder,
                                 const QString &voiceActivity, const QString &size, int threads) {
    if (name == u"whole"_qs)
        return std::make_unique<WholeRoute>(folder, voiceActivity, size, threads);
    if (name == u"analyser"_qs)
        return std::make_unique<AnalyserRoute>(folder, voiceActivity, size, threads);
    if (name == u"chunks"_qs)
        return std::make_unique<ChunkedRoute>(folder, voiceActivity, size, threads);
    throw LocalizedError(u"There is no route “%1”."_qs.arg(name));
}

} // namespace lorvane
