#include "Speech/BeamSearch.h"

#include <algorithm>
#include <memory>
#include <utility>

namespace lorvane {

namespace {

/// How many texts grow side by side.
constexpr std::size_t width = 4;

/// A token further than this below the most probable one is never tried.
constexpr float leastScore = 14;

/// Without phrases, whose rewards come late, a text this far behind the best, in logarithms, hardly
/// ever becomes the best. Measured: see docs/recogniser.md.
constexpr float mostBehind = 1.5F;

/// A token of a text, and what stands before it.
struct Link {
    Token token;
    float logProbability;
    std::vector<float> attention;
    std::shared_ptr<const Link> before;
};

struct Text {
    std::shared_ptr<const Link> end;
    float score = 0; ///< the logarithm of its probability, and its rewards
    PhraseProgress progress;
    std::size_t row = 0;   ///< of the step that says what may follow
    bool isGreedy = false; ///< it consists of the most probable token at every step
};

/// A text with one more token.
struct Continuation {
    std::size_t text;
    Token token;
    float logProbability;
    float score;
    PhraseProgress progress;
    bool isGreedy;
};

std::vector<Token> tokensOf(const std::shared_ptr<const Link> &end) {
    std::vector<Token> tokens;
    for (const Link *link = end.get(); link; link = link->before.get())
        tokens.push_back(link->token);
    std::reverse(tokens.begin(), tokens.end());
    return tokens;
}

Decoding decodingOf(const Text &text) {
    std::vector<const Link *> links;
    for (const Link *link = text.end.get(); link; link = link->before.get())
        links.push_back(link);
    Decoding decoding;
    for (auto link = links.rbegin(); link != links.rend(); ++link) {
        decoding.tokens.push_back((*link)->token);
        decoding.logProbabilities.push_back((*link)->logProbability);
        const std::vector<float> &attention = (*link)->attention;
        decoding.frameCount = attention.size();
        decoding.attention.insert(decoding.attention.end(), attention.begin(), attention.end());
    }
    return decoding;
}

/// The search from one step to the next.
class Beam {
public:
    Beam(const PhraseTrie &phrases, const TokenTable &tokens)
        : phrases_(phrases), tokens_(tokens), texts_(1) {
        texts_.front().isGreedy = phrases.isEmpty();
    }

    /// Takes the tokens that may follow each text, and keeps the best texts.
    void grow(const DecoderStep &step) {
        std::vector<Continuation> continuations;
        for (std::size_t text = 0; text < texts_.size(); ++text)
            appendContinuations(text, step.scoresOf(text), continuations);
        // Equal scores are kept in order, so that the result is always the same.
        std::stable_sort(
            continuations.begin(), continuations.end(),
            [](const Continuation &a, const Continuation &b) { return a.score > b.score; });
        std::vector<Text> kept;
        for (const Continuation &next : continuations) {
            const bool isBehind =
                kept.size() >= width ||
                (phrases_.isEmpty() && next.score < continuations.front().score - mostBehind);
            if (isBehind && !next.isGreedy)
                continue;
            const Text &text = texts_[next.text];
            if (next.token == TokenTable::end) {
                addEnded({text.end, next.score, next.progress, 0, next.isGreedy});
                continue;
            }
            const std::span<const float> attention = step.attentionOf(next.text);
            auto link = std::make_shared<const Link>(
                Link{next.token, next.logProbability,
                     std::vector<float>(attention.begin(), attention.end()), text.end});
            if (loopLength(tokensOf(link)) == 0)
                kept.push_back(
                    {std::move(link), next.score, next.progress, next.text, next.isGreedy});
            else if (next.isGreedy)
                isLost_ = true;
        }
        texts_ = std::move(kept);
    }

    /// Whether no text can become better than the best that has come to its end.
    bool isDone() const {
        return texts_.empty() || isLost_ ||
               (!isGreedyOpen() && !ended_.empty() && texts_.front().score <= best().score);
    }

    const std::vector<Text> &texts() const { return texts_; }

    std::optional<Decoding> result() const {
        if (isLost_ || isGreedyOpen() || (ended_.empty() && texts_.empty()))
            return {};
        return decodingOf(ended_.empty() ? texts_.front() : best());
    }

private:
    void appendContinuations(std::size_t index, std::span<const float> scores,
                             std::vector<Continuation> &continuations) {
        const Text &text = texts_[index];
        const float normalizer = logNormalizer(scores);
        bool isGreedy = text.isGreedy; // the first one that is appended
        const auto append = [&](Token token) {
            if (token == TokenTable::end && !text.end)
                return; // there is a voice, so there are words
            const float logProbability = scores[static_cast<std::size_t>(token)] - normalizer;
            Continuation next{index,          token,
                              logProbability, text.score + logProbability,
                              text.progress,  std::exchange(isGreedy, false)};
            next.score += next.progress.advance(token, phrases_, tokens_);
            continuations.push_back(next);
        };
        // The most probable ones, and those that phrases go on or begin with.
        chosen_.clear();
        for (std::size_t token = 0; token < scores.size(); ++token) {
            if (chosen_.size() <= width || scores[token] > scores[at(chosen_.back())]) {
                const auto place = std::upper_bound(
                    chosen_.begin(), chosen_.end(), scores[token],
                    [&](float score, Token other) { return score > scores[at(other)]; });
                chosen_.insert(place, static_cast<Token>(token));
                if (chosen_.size() > width + 1)
                    chosen_.pop_back();
            }
        }
        const float lowest = scores[at(chosen_.front())] - leastScore;
        for (const PhraseTrie::Node node : {text.progress.node(), PhraseTrie::root}) {
            for (const PhraseTrie::Branch &branch : phrases_.branches(node)) {
                if (at(branch.token) < scores.size() && scores[at(branch.token)] >= lowest &&
                    std::find(chosen_.begin(), chosen_.end(), branch.token) == chosen_.end())
                    chosen_.push_back(branch.token);
            }
            if (node == PhraseTrie::root)
                break;
        }
        for (const Token token : chosen_)
            append(token);
    }

    void addEnded(Text text) {
        if (text.isGreedy) {
            leastLetters_ = letterCount(text) - mostLettersLost;
            std::erase_if(ended_, [&](const Text &other) { return isCutOff(other); });
        }
        if (!isCutOff(text))
            ended_.push_back(std::move(text));
    }

    bool isCutOff(const Text &text) const { return letterCount(text) < leastLetters_; }

    qsizetype letterCount(const Text &text) const {
        QByteArray utf8;
        for (const Token token : tokensOf(text.end))
            utf8 += tokens_.bytes(token);
        const QString characters = QString::fromUtf8(utf8);
        return std::count_if(characters.begin(), characters.end(),
                             [](QChar c) { return c.isLetterOrNumber(); });
    }

    /// Of the texts that have come to their end: at least one.
    const Text &best() const {
        return *std::max_element(ended_.begin(), ended_.end(),
                                 [](const Text &a, const Text &b) { return a.score < b.score; });
    }

    bool isGreedyOpen() const {
        return std::any_of(texts_.begin(), texts_.end(),
                           [](const Text &text) { return text.isGreedy; });
    }

    static std::size_t at(Token token) { return static_cast<std::size_t>(token); }

    const PhraseTrie &phrases_;
    const TokenTable &tokens_;
    std::vector<Text> texts_;    ///< the best first
    std::vector<Text> ended_;    ///< those that are not cut off, as far as is known
    qsizetype leastLetters_ = 0; ///< of a text that is not cut off
    bool isLost_ = false;        ///< the greedy text runs in circles
    std::vector<Token> chosen_;
};

} // namespace

float PhraseProgress::advance(Token token, const PhraseTrie &phrases, const TokenTable &tokens) {
    float gain = 0;
    if (node_ != PhraseTrie::root) {
        if (phrases.phrase(node_) >= 0 && !tokens.continuesWord(token))
            pending_ = 0; // the phrase is whole
        node_ = phrases.next(node_, token);
        if (node_ != PhraseTrie::none) {
            pending_ += phrases.reward(node_);
            return phrases.reward(node_);
        }
        gain = -pending_;
        pending_ = 0;
        node_ = PhraseTrie::root;
    }
    const PhraseTrie::Node start = phrases.next(PhraseTrie::root, token);
    if (start != PhraseTrie::none) {
        node_ = start;
        pending_ = phrases.reward(node_);
        gain += pending_;
    }
    return gain;
}

std::optional<Decoding> searchBeam(DecoderSteps &decoder, std::size_t mostTokens,
                                   const PhraseTrie &phrases, const TokenTable &tokens,
                                   const std::stop_token &stop) {
    Beam beam(phrases, tokens);
    beam.grow(decoder.begin({}, stop));
    for (std::size_t count = 1; count < mostTokens && !beam.isDone(); ++count) {
        std::vector<Token> last;
        std::vector<std::size_t> rows;
        for (const Text &text : beam.texts()) {
            last.push_back(text.end->token);
            rows.push_back(text.row);
        }
        beam.grow(decoder.feed(last, rows, stop));
    }
    return beam.result();
}

Decoding decodeWithBeam(Hearing &hearing, const TokenTable &tokens, const std::stop_token &stop) {
    std::optional<Decoding> found =
        searchBeam(*hearing.decoder, hearing.mostTokens, PhraseTrie(), tokens, stop);
    if (!found)
        return decodeGreedily(hearing, true, stop); // up to the place where the model loses itself
    found->firstFrameTime = hearing.firstFrameTime;
    return std::move(*found);
}

std::vector<PhraseSpan> findPhrases(std::span<const Token> text, const PhraseTrie &phrases,
                                    const TokenTable &tokens) {
    std::vector<PhraseSpan> spans;
    for (std::size_t first = 0; first < text.size();) {
        PhraseTrie::Node node = PhraseTrie::root;
        std::optional<PhraseSpan> longest;
        for (std::size_t i = first; i < text.size(); ++i) {
            node = phrases.next(node, text[i]);
            if (node == PhraseTrie::none)
                break;
            const bool isWhole = i + 1 == text.size() || !tokens.continuesWord(text[i + 1]);
            if (phrases.phrase(node) >= 0 && isWhole)
                longest = PhraseSpan{phrases.phrase(node), first, i + 1};
        }
        if (longest)
            spans.push_back(*longest);
        first = longest ? longest->last : first + 1;
    }
    return spans;
}

} // namespace lorvane
