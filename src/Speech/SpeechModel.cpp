#include "Speech/SpeechModel.h"

#include <algorithm>

namespace lorvane {

namespace {

// The model wants a little silence around the voice and at least a second in all.
constexpr std::size_t samplesBefore = SpeechModel::sampleRate / 5;
constexpr std::size_t samplesAfter = SpeechModel::sampleRate * 2 / 5;
constexpr std::size_t leastSamples = SpeechModel::sampleRate;

// Nobody speaks faster; a model that does repeats itself.
constexpr double tokensPerSecond = 6.5;
constexpr std::size_t leastTokens = 8;

} // namespace

SpeechModel::SpeechModel(OnnxRuntime &runtime, const ModelFiles &files)
    : encoder_(runtime.open(files.encoder)),
      decoder_(runtime, files.decoder, files.alignmentHead),
      alignmentOffset_(files.alignmentOffset) {}

Hearing SpeechModel::hear(std::span<const float> samples, const std::stop_token &stop) {
    std::vector<float> padded(
        std::max(samplesBefore + samples.size() + samplesAfter, leastSamples));
    std::copy(samples.begin(), samples.end(), padded.begin() + samplesBefore);
    std::vector<Ort::Value> inputs;
    inputs.push_back(tensorOf(padded.data(), {1, static_cast<int64_t>(padded.size())}));
    std::vector<Ort::Value> outputs =
        run(encoder_, {"input_values"}, inputs, {"last_hidden_state"}, stop);
    const double seconds = static_cast<double>(padded.size()) / sampleRate;
    return {std::make_unique<Decoder>(decoder_, std::move(outputs.front())),
            std::max(leastTokens, static_cast<std::size_t>(seconds * tokensPerSecond)),
            -static_cast<double>(samplesBefore) / sampleRate - alignmentOffset_};
}

} // namespace lorvane
