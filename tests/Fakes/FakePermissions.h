#pragma once

#include "Platform/Permissions.h"

#include <optional>

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

    int microphonePromptCount = 0; ///< two requests at once share a prompt
    int speechPromptCount = 0;
    int accessibilityRequestCount = 0;

    /// Answers the standing prompt, if there is one.
    void answerMicrophone(bool isAllowed) const { microphonePrompt_.answer(isAllowed); }
    void answerSpeech(bool isAllowed) const { speechPrompt_.answer(isAllowed); }

    int microphoneStatus() override { return microphone; }
    int speechStatus() override { return speech; }

    Async<bool> requestMicrophone() override {
        if (microphone == 0) {
            const bool isAllowed =
                co_await ask(microphonePrompt_, microphoneAnswer, microphonePromptCount);
            microphone = isAllowed ? 3 : 2;
        }
        co_return microphone == 3;
    }

    Async<int> requestSpeech() override {
        if (speech == 0) {
            const bool isAllowed = co_await ask(speechPrompt_, speechAnswer, speechPromptCount);
            speech = isAllowed ? 3 : 1;
        }
        co_return speech;
    }

    bool accessibilityTrusted() override { return accessibility; }
    void requestAccessibility() override { ++accessibilityRequestCount; }

private:
    struct Prompt {
        std::optional<Continuation<bool>> standing;
        Task<bool> task;

        void answer(bool isAllowed) const {
            if (standing)
                standing->resume(isAllowed);
        }
    };

    Async<bool> ask(Prompt &prompt, std::optional<bool> answer, int &count) {
        if (!prompt.task || prompt.task.isDone()) {
            ++count;
            prompt.task = Task<bool>::run(show(prompt, answer));
        }
        const Task<bool> task = prompt.task;
        const bool isAllowed = co_await task;
        co_return isAllowed;
    }

    Async<bool> show(Prompt &prompt, std::optional<bool> answer) {
        const bool isAllowed =
            co_await suspend<bool>(clock_, [&](const Continuation<bool> &caller) {
                prompt.standing = caller;
                if (answer)
                    caller.resume(*answer);
            });
        prompt.standing.reset();
        co_return isAllowed;
    }

    Clock &clock_;
    Prompt microphonePrompt_;
    Prompt speechPrompt_;
};

} // namespace lorvane
