#include "Speech/SpeechModel.h"

#include "Core/LocalizedError.h"

#include <algorithm>
#include <array>

namespace lorvane {

namespace {

// The model wants a little silence around the voice and at least a second in all.
constexpr std::size_t samplesBefore = SpeechModel::sampleRate / 5;
constexpr std::size_t samplesAfter = SpeechModel::sampleRate * 2 / 5;
constexpr std::size_t leastSamples = SpeechModel::sampleRate;

// Nobody speaks faster; a model that does repeats itself.
constexpr double tokensPerSecond = 6.5;
constexpr std::size_t leastTokens = 8;

/// The number of tokens at the end that only repeat what stands before them, 0 if the text is not
/// a loop. People do say a word four times; a loop is longer.
std::size_t loopLength(const std::vector<Token> &tokens) {
    constexpr std::size_t repeats = 4;
    constexpr std::size_t leastLength = 12;
    constexpr std::size_t longestPhrase = 16;
    for (std::size_t phrase = 1; phrase <= longestPhrase; ++phrase) {
        const std::size_t length = std::max(phrase * repeats, leastLength / phrase * phrase);
        if (tokens.size() < length)
            continue;
        const auto start = tokens.end() - static_cast<std::ptrdiff_t>(length);
        if (std::equal(start, tokens.end() - static_cast<std::ptrdiff_t>(phrase),
                       start + static_cast<std::ptrdiff_t>(phrase)))
            return length - phrase;
    }
    return 0;
}

} // namespace

/// The inputs of the decoder, which it partly makes itself at each token.
class SpeechModel::DecoderState {
public:
    DecoderState(SpeechModel &model, Ort::Value hidden) : model_(model) {
        inputs_.push_back(tensorOf(token_.data(), {1, 1}));
        inputs_.push_back(std::move(hidden));
        const std::vector<int64_t> nothing{0, model.headCount_, 1, model.headSize_};
        for (int i = 0; i < model.layerCount_ * 4; ++i)
            inputs_.push_back(tensorOf(&noValue_, nothing));
        inputs_.push_back(tensorOf(useCache_.data(), {1}));
    }

    /// Feeds one token and gives the scores of the next one and the cross-attention.
    std::pair<Ort::Value, Ort::Value> feed(Token token, const std::stop_token &stop) {
        token_[0] = token;
        const bool isFirst = !useCache_[0];
        const auto &names = isFirst ? model_.firstOutputNames_ : model_.laterOutputNames_;
        std::vector<Ort::Value> outputs =
            run(model_.decoder_, model_.inputNames_, inputs_, names, stop);
        // The keys and values of the encoder never change: those of the first step are kept.
        const std::size_t perLayer = isFirst ? 4 : 2;
        for (std::size_t layer = 0; layer < static_cast<std::size_t>(model_.layerCount_); ++layer) {
            for (std::size_t i = 0; i < perLayer; ++i)
                inputs_[2 + layer * 4 + i] = std::move(outputs[2 + layer * perLayer + i]);
        }
        useCache_[0] = true;
        return {std::move(outputs[0]), std::move(outputs[1])};
    }

private:
    SpeechModel &model_;
    std::array<int64_t, 1> token_{};
    std::array<bool, 1> useCache_{};
    float noValue_ = 0; ///< where an empty tensor points
    std::vector<Ort::Value> inputs_;
};

SpeechModel::SpeechModel(OnnxRuntime &runtime, const ModelFiles &files)
    : encoder_(runtime.open(files.encoder)),
      decoder_(runtime.open(files.decoder)),
      alignmentHead_(static_cast<std::size_t>(files.alignmentHead)),
      alignmentOffset_(files.alignmentOffset) {
    // The inputs are input_ids, encoder_hidden_states, four a layer, and use_cache_branch.
    layerCount_ = static_cast<int>(decoder_.GetInputCount() - 3) / 4;
    const auto shape = decoder_.GetInputTypeInfo(2).GetTensorTypeAndShapeInfo().GetShape();
    if (shape.size() != 4)
        throw LocalizedError(u"The speech model “%1” is of an unknown kind."_qs.arg(files.decoder));
    headCount_ = shape[1];
    headSize_ = shape[3];

    names_.reserve(static_cast<std::size_t>(layerCount_) * 8 + 5);
    const auto name = [this](std::string text) {
        return names_.emplace_back(std::move(text)).c_str();
    };
    inputNames_ = {name("input_ids"), name("encoder_hidden_states")};
    firstOutputNames_ = {name("logits"), name("cross_attention")};
    laterOutputNames_ = firstOutputNames_;
    for (int layer = 0; layer < layerCount_; ++layer) {
        const std::string number = std::to_string(layer);
        for (const char *part :
             {".decoder.key", ".decoder.value", ".encoder.key", ".encoder.value"}) {
            inputNames_.push_back(name("past_key_values." + number + part));
            firstOutputNames_.push_back(name("present." + number + part));
            if (part[1] == 'd')
                laterOutputNames_.push_back(firstOutputNames_.back());
        }
    }
    inputNames_.push_back(name("use_cache_branch"));
}

Ort::Value SpeechModel::encode(std::vector<float> &samples, const std::stop_token &stop) {
    std::vector<Ort::Value> inputs;
    inputs.push_back(tensorOf(samples.data(), {1, static_cast<int64_t>(samples.size())}));
    std::vector<Ort::Value> outputs =
        run(encoder_, {"input_values"}, inputs, {"last_hidden_state"}, stop);
    return std::move(outputs.front());
}

Decoding SpeechModel::transcribe(std::span<const float> samples, const std::stop_token &stop) {
    std::vector<float> padded(
        std::max(samplesBefore + samples.size() + samplesAfter, leastSamples));
    std::copy(samples.begin(), samples.end(), padded.begin() + samplesBefore);

    DecoderState state(*this, encode(padded, stop));
    const double seconds = static_cast<double>(padded.size()) / sampleRate;
    const std::size_t mostTokens =
        std::max(leastTokens, static_cast<std::size_t>(seconds * tokensPerSecond));

    Decoding decoding;
    decoding.firstFrameTime = -static_cast<double>(samplesBefore) / sampleRate - alignmentOffset_;
    Token token = TokenTable::begin;
    while (decoding.tokens.size() < mostTokens) {
        const auto [scores, attention] = state.feed(token, stop);
        const float *score = scores.GetTensorData<float>();
        const auto tokenCount = scores.GetTensorTypeAndShapeInfo().GetShape().back();
        token = static_cast<Token>(std::max_element(score, score + tokenCount) - score);
        if (token == TokenTable::end && decoding.tokens.empty()) {
            // There is a voice, so there are words: take the next best.
            token =
                static_cast<Token>(std::max_element(score + token + 1, score + tokenCount) - score);
        }
        if (token == TokenTable::end)
            break;
        decoding.tokens.push_back(token);
        decoding.frameCount =
            static_cast<std::size_t>(attention.GetTensorTypeAndShapeInfo().GetShape().back());
        const float *row = attention.GetTensorData<float>() + alignmentHead_ * decoding.frameCount;
        decoding.attention.insert(decoding.attention.end(), row, row + decoding.frameCount);
        if (const std::size_t loop = loopLength(decoding.tokens)) {
            decoding.tokens.resize(decoding.tokens.size() - loop);
            decoding.attention.resize(decoding.tokens.size() * decoding.frameCount);
            break;
        }
    }
    return decoding;
}

} // namespace lorvane
