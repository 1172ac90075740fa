#pragma once

#include "Platform/Permissions.h"

#include <optional>
#include <utility>
#include <vector>

namespace lorvane {

/// Grants as the test sets them: at first all are given.
class FakePermissions final : public Permissions {
public:
    explicit FakePermissions(Clock &clock) : clock_(clock) {}

    int microphone = 3; ///< 0 not determined, 1 restricted, 2 denied, 3 authorized
    int speech = 3;     ///< 0 not determined, 1 denied, 2 restricted, 3 authorized
    bool accessibility = true;

    /// What the user answers to a prompt; absent leaves the prompt standing until `answer...`.
    std::optional<bool> microphoneAnswer = true;
    std::optional<bool> speechAnswer = true;

    int microphonePromptCount = 0;
    int speechPromptCount = 0;
    int accessibilityRequestCount = 0;

    /// Answers the standing prompts.
    void answerMicrophone(bool allowed) { answer(microphonePrompts_, allowed); }
    void answerSpeech(bool allowed) { answer(speechPrompts_, allowed); }

    int microphoneStatus() override { return microphone; }
    int speechStatus() override { return speech; }

    Async<bool> requestMicrophone() override {
        if (microphone == 0) {
            ++microphonePromptCount;
            const bool allowed = co_await prompt(microphonePrompts_, microphoneAnswer);
            microphone = allowed ? 3 : 2;
        }
        co_return microphone == 3;
    }

    Async<int> requestSpeech() override {
        if (speech == 0) {
            ++speechPromptCount;
            const bool allowed = co_await prompt(speechPrompts_, speechAnswer);
            speech = allowed ? 3 : 1;
        }
        co_return speech;
    }

    bool accessibilityTrusted() override { return accessibility; }
    void requestAccessibility() override { ++accessibilityRequestCount; }

private:
    using Prompts = std::vector<Continuation<bool>>;

    Async<bool> prompt(Prompts &prompts, std::optional<bool> readyAnswer) {
        const bool allowed = co_await suspend<bool>(clock_, [&](Continuation<bool> caller) {
            if (readyAnswer)
                caller.resume(*readyAnswer);
            else
                prompts.push_back(caller);
        });
        co_return allowed;
    }

    static void answer(Prompts &prompts, bool allowed) {
        for (const auto &caller : std::exchange(prompts, {}))
            caller.resume(allowed);
    }

    Clock &clock_;
    Prompts microphonePrompts_;
    Prompts speechPrompts_;
};

} // namespace lorvane
