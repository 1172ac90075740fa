#include "Speech/Decoder.h"

#include "Core/LocalizedError.h"

#include <algorithm>

namespace lorvane {

namespace {

/// Each layer has the keys and the values of the text, and those of the audio.
constexpr std::size_t perLayer = 4;
constexpr std::size_t ownPerLayer = 2;
/// Before them stand the tokens and the encoded audio, or the scores and the attention.
constexpr std::size_t before = 2;

/// A tensor that looks at another one's numbers.
Ort::Value viewOf(const Ort::Value &value) {
    return tensorOf(const_cast<float *>(value.GetTensorData<float>()),
                    value.GetTensorTypeAndShapeInfo().GetShape());
}

} // namespace

DecoderModel::DecoderModel(OnnxRuntime &runtime, const QString &path, int alignmentHead)
    : session_(runtime.open(path)), alignmentHead_(static_cast<std::size_t>(alignmentHead)) {
    // The inputs are input_ids, encoder_hidden_states, four a layer, and use_cache_branch.
    layerCount_ = (session_.GetInputCount() - before - 1) / perLayer;
    const auto shape = session_.GetInputTypeInfo(before).GetTensorTypeAndShapeInfo().GetShape();
    if (shape.size() != 4)
        throw LocalizedError(u"The speech model “%1” is of an unknown kind."_qs.arg(path));
    headCount_ = shape[1];
    headSize_ = shape[3];

    names_.reserve(layerCount_ * 2 * perLayer + 5);
    const auto name = [this](std::string text) {
        return names_.emplace_back(std::move(text)).c_str();
    };
    inputNames_ = {name("input_ids"), name("encoder_hidden_states")};
    firstOutputNames_ = {name("logits"), name("cross_attention")};
    laterOutputNames_ = firstOutputNames_;
    for (std::size_t layer = 0; layer < layerCount_; ++layer) {
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

Decoder::Decoder(DecoderModel &model, Ort::Value hidden) : model_(model) {
    inputs_.emplace_back(nullptr);
    inputs_.push_back(std::move(hidden));
    const std::vector<int64_t> nothing{0, model.headCount_, 1, model.headSize_};
    for (std::size_t i = 0; i < model.layerCount_ * perLayer; ++i)
        inputs_.push_back(tensorOf(&noValue_, nothing));
    inputs_.push_back(tensorOf(useCache_.data(), {1}));
}

DecoderStep Decoder::begin(std::span<const Token> draft, const std::stop_token &stop) {
    std::vector<int64_t> tokens{TokenTable::begin};
    tokens.insert(tokens.end(), draft.begin(), draft.end());
    if (first_.empty() || tokens != draft_) {
        inputs_[0] = tensorOf(tokens.data(), {1, static_cast<int64_t>(tokens.size())});
        useCache_[0] = false;
        first_ = run(model_.session_, model_.inputNames_, inputs_, model_.firstOutputNames_, stop);
        draft_ = std::move(tokens);
        useCache_[0] = true;
        // The keys and values of the audio never change.
        for (std::size_t layer = 0; layer < model_.layerCount_; ++layer) {
            for (std::size_t i = ownPerLayer; i < perLayer; ++i) {
                const std::size_t place = before + layer * perLayer + i;
                inputs_[place] = viewOf(first_[place]);
            }
        }
    }
    for (std::size_t layer = 0; layer < model_.layerCount_; ++layer) {
        for (std::size_t i = 0; i < ownPerLayer; ++i) {
            const std::size_t place = before + layer * perLayer + i;
            inputs_[place] = viewOf(first_[place]);
        }
    }
    textCount_ = draft_.size();
    isDraft_ = textCount_ > 1;
    return step(first_);
}

DecoderStep Decoder::feed(std::span<const Token> tokens, std::span<const std::size_t> parents,
                          const std::stop_token &stop) {
    if (isDraft_)
        keepStartOfDraft(parents.front() + 1);
    else
        keepParents(parents);
    tokens_.assign(tokens.begin(), tokens.end());
    inputs_[0] = tensorOf(tokens_.data(), {static_cast<int64_t>(tokens_.size()), 1});
    latest_ = run(model_.session_, model_.inputNames_, inputs_, model_.laterOutputNames_, stop);
    for (std::size_t layer = 0; layer < model_.layerCount_; ++layer) {
        for (std::size_t i = 0; i < ownPerLayer; ++i)
            inputs_[before + layer * perLayer + i] =
                std::move(latest_[before + layer * ownPerLayer + i]);
    }
    textCount_ = tokens.size();
    isDraft_ = false;
    return step(latest_);
}

/// Gives each new text the keys and values of the one that it continues.
void Decoder::keepParents(std::span<const std::size_t> parents) {
    bool isSame = parents.size() == textCount_;
    for (std::size_t i = 0; i < parents.size() && isSame; ++i)
        isSame = parents[i] == i;
    if (isSame)
        return;
    replaceKeysAndValues([&](const float *old, std::vector<int64_t> &shape) {
        const auto size = static_cast<std::size_t>(shape[1] * shape[2] * shape[3]);
        std::vector<float> chosen(parents.size() * size);
        for (std::size_t text = 0; text < parents.size(); ++text)
            std::copy_n(old + parents[text] * size, size, &chosen[text * size]);
        shape[0] = static_cast<int64_t>(parents.size());
        return chosen;
    });
}

/// Gives the next token the keys and values of so many tokens, the one before the draft included.
void Decoder::keepStartOfDraft(std::size_t tokenCount) {
    replaceKeysAndValues([tokenCount](const float *old, std::vector<int64_t> &shape) {
        const auto headCount = static_cast<std::size_t>(shape[1]);
        const auto size = static_cast<std::size_t>(shape[2] * shape[3]); // of a head
        const std::size_t kept = tokenCount * static_cast<std::size_t>(shape[3]);
        std::vector<float> start(headCount * kept);
        for (std::size_t head = 0; head < headCount; ++head)
            std::copy_n(old + head * size, kept, &start[head * kept]);
        shape[2] = static_cast<int64_t>(tokenCount);
        return start;
    });
}

void Decoder::replaceKeysAndValues(const Replacement &replacement) {
    kept_.resize(model_.layerCount_ * ownPerLayer);
    for (std::size_t layer = 0; layer < model_.layerCount_; ++layer) {
        for (std::size_t i = 0; i < ownPerLayer; ++i) {
            Ort::Value &input = inputs_[before + layer * perLayer + i];
            std::vector<int64_t> shape = input.GetTensorTypeAndShapeInfo().GetShape();
            std::vector<float> numbers = replacement(input.GetTensorData<float>(), shape);
            std::vector<float> &kept = kept_[layer * ownPerLayer + i];
            kept = std::move(numbers);
            input = tensorOf(kept.data(), shape);
        }
    }
}

DecoderStep Decoder::step(const std::vector<Ort::Value> &outputs) const {
    const auto scores = outputs[0].GetTensorTypeAndShapeInfo().GetShape();
    const auto attention = outputs[1].GetTensorTypeAndShapeInfo().GetShape();
    DecoderStep step;
    step.tokenCount = static_cast<std::size_t>(scores.back());
    step.scores = outputs[0].GetTensorData<float>();
    step.frameCount = static_cast<std::size_t>(attention.back());
    // It is [texts, heads, 1, frames], but of a draft [1, heads, tokens, frames].
    const std::size_t headSize = static_cast<std::size_t>(attention[2]) * step.frameCount;
    step.attention = outputs[1].GetTensorData<float>() + model_.alignmentHead_ * headSize;
    step.attentionStride =
        isDraft_ ? step.frameCount : static_cast<std::size_t>(attention[1]) * step.frameCount;
    return step;
}

} // namespace lorvane
