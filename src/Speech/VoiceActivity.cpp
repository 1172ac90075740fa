#include "Speech/VoiceActivity.h"

#include <algorithm>

namespace lorvane {

namespace {

constexpr float beginsAt = 0.5F;
constexpr float endsBelow = 0.35F;
constexpr int longestGap = 6;    ///< windows below the threshold inside a span
constexpr int shortestVoice = 4; ///< windows; noise gives one now and then

} // namespace

void VoiceActivity::listen(std::span<const float> samples, const std::stop_token &stop) {
    int64_t rate = 16000;
    for (; samples.size() >= windowSize; samples = samples.subspan(windowSize)) {
        std::copy_n(samples.begin(), windowSize, window_.begin() + contextSize);
        std::vector<Ort::Value> inputs;
        inputs.push_back(tensorOf(window_.data(), {1, static_cast<int64_t>(window_.size())}));
        inputs.push_back(tensorOf(state_.data(), {2, 1, 128}));
        inputs.push_back(tensorOf(&rate, {}));
        const std::vector<Ort::Value> outputs =
            run(model_.session_, {"input", "state", "sr"}, inputs, {"output", "stateN"}, stop);
        probabilities_.push_back(outputs[0].GetTensorData<float>()[0]);
        std::copy_n(outputs[1].GetTensorData<float>(), state_.size(), state_.begin());
        std::copy(window_.end() - contextSize, window_.end(), window_.begin());
    }
}

std::vector<VoiceSpan> voiceSpans(std::span<const float> probabilities) {
    std::vector<VoiceSpan> spans;
    const int count = static_cast<int>(probabilities.size());
    for (int i = 0; i < count;) {
        if (probabilities[static_cast<std::size_t>(i)] < beginsAt) {
            ++i;
            continue;
        }
        int end = i;
        int voiced = 0;
        for (int j = i; j < count && j - end <= longestGap; ++j) {
            const float probability = probabilities[static_cast<std::size_t>(j)];
            if (probability >= endsBelow)
                end = j + 1;
            if (probability >= beginsAt)
                ++voiced;
        }
        if (voiced >= shortestVoice)
            spans.push_back(
                {i * VoiceActivity::secondsPerWindow, end * VoiceActivity::secondsPerWindow});
        i = end + 1;
    }
    return spans;
}

} // namespace lorvane
