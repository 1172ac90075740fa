#pragma once

#include "Platform/Clock.h"

#include <coroutine>
#include <exception>
#include <memory>
#include <mutex>
#include <optional>
#include <stop_token>
#include <type_traits>
#include <utility>
#include <variant>
#include <vector>

#ifdef __SANITIZE_ADDRESS__
#include <sanitizer/lsan_interface.h>
#endif

/// Asynchronous functions and the tasks that run them, all on the main thread.
///
/// `Async<T>` is the result type of an asynchronous function. It begins when it is awaited and
/// belongs to the task that awaits it: cancelling that task is seen inside it.
/// `Task<T>` is a running asynchronous function: it starts at once, can be cancelled, and can be
/// awaited by several; awaiting a task does not pass the awaiter's cancellation on to it.
///
/// Cancellation is a request that the function has to look at:
///     const std::stop_token cancellation = co_await currentCancellation;
namespace lorvane {

struct CurrentCancellation {};
/// `co_await currentCancellation` gives the std::stop_token of the running task, without a wait.
inline constexpr CurrentCancellation currentCancellation;

namespace detail {

template <class T>
using Stored = std::conditional_t<std::is_void_v<T>, std::monostate, T>;

struct CancellationScope {
    std::stop_token cancellation;

#ifdef __SANITIZE_ADDRESS__
    // A task that waits for what never comes, since its clock has gone, is abandoned: no leak.
    static void *operator new(std::size_t size) {
        void *frame = ::operator new(size);
        __lsan_ignore_object(frame);
        return frame;
    }
    static void operator delete(void *frame) { ::operator delete(frame); }
#endif

    struct TokenAwaiter {
        std::stop_token token;
        bool await_ready() const noexcept { return true; }
        void await_suspend(std::coroutine_handle<>) const noexcept {}
        std::stop_token await_resume() const { return token; }
    };
    TokenAwaiter await_transform(CurrentCancellation) const { return {cancellation}; }
    template <class Awaitable>
    Awaitable &&await_transform(Awaitable &&awaitable) const {
        return std::forward<Awaitable>(awaitable);
    }
};

template <class T>
struct AsyncResult {
    std::optional<T> value;
    std::exception_ptr error;

    template <class U>
    void return_value(U &&result) {
        value.emplace(std::forward<U>(result));
    }
    void unhandled_exception() { error = std::current_exception(); }
    T take() {
        if (error)
            std::rethrow_exception(error);
        return std::move(*value);
    }
};

template <>
struct AsyncResult<void> {
    std::exception_ptr error;

    void return_void() {}
    void unhandled_exception() { error = std::current_exception(); }
    void take() const {
        if (error)
            std::rethrow_exception(error);
    }
};

} // namespace detail

template <class T = void>
class [[nodiscard]] Async {
public:
    struct promise_type : detail::CancellationScope, detail::AsyncResult<T> {
        std::coroutine_handle<> awaiter;

        Async get_return_object() {
            return Async(std::coroutine_handle<promise_type>::from_promise(*this));
        }
        std::suspend_always initial_suspend() const noexcept { return {}; }

        struct ResumeAwaiter {
            bool await_ready() const noexcept { return false; }
            std::coroutine_handle<>
            await_suspend(std::coroutine_handle<promise_type> self) const noexcept {
                const std::coroutine_handle<> awaiter = self.promise().awaiter;
                return awaiter ? awaiter : std::noop_coroutine();
            }
            void await_resume() const noexcept {}
        };
        ResumeAwaiter final_suspend() const noexcept { return {}; }
    };

    Async(Async &&other) noexcept : coroutine_(std::exchange(other.coroutine_, nullptr)) {}
    Async &operator=(Async &&) = delete;
    ~Async() {
        if (coroutine_)
            coroutine_.destroy();
    }

    bool await_ready() const noexcept { return false; }
    /// Runs the function here and suspends the awaiter only if it doesn't finish: a chain of jumps
    /// would grow the stack in a loop of functions that finish at once, in builds without tail
    /// calls.
    template <class Promise>
    bool await_suspend(std::coroutine_handle<Promise> awaiter) {
        coroutine_.promise().cancellation = awaiter.promise().cancellation;
        coroutine_.resume();
        if (coroutine_.done())
            return false;
        coroutine_.promise().awaiter = awaiter;
        return true;
    }
    T await_resume() { return coroutine_.promise().take(); }

private:
    explicit Async(std::coroutine_handle<promise_type> coroutine) : coroutine_(coroutine) {}

    std::coroutine_handle<promise_type> coroutine_;
};

/// A handle of a running task; a default one is absent. Dropping the handle lets the task run on.
template <class T = void>
class Task {
public:
    Task() = default;

    /// Starts `function` and runs it up to its first suspension.
    static Task run(Async<T> function) {
        Task task;
        task.state_ = std::make_shared<State>();
        drive(task.state_, std::move(function));
        return task;
    }

    /// Starts `function` in a turn of the main queue of its own: the caller isn't held up.
    static Task post(Clock &clock, Async<T> function) {
        Task task;
        task.state_ = std::make_shared<State>();
        // std::function wants something that can be copied.
        auto held = std::make_shared<Async<T>>(std::move(function));
        clock.post([state = task.state_, held] { drive(state, std::move(*held)); });
        return task;
    }

    explicit operator bool() const { return state_ != nullptr; }
    bool isDone() const { return state_ && state_->done; }

    /// Asks the task to end. Does nothing on an absent or finished one.
    void cancel() const {
        if (const auto state = state_)
            state->stop.request_stop();
    }

    /// Waits for the result. An exception of the task is thrown to each awaiter.
    auto operator co_await() const { return Awaiter{state_}; }

private:
    struct State {
        std::stop_source stop;
        std::optional<detail::Stored<T>> value;
        std::exception_ptr error;
        bool done = false;
        std::vector<std::coroutine_handle<>> awaiters;
    };

    struct Awaiter {
        std::shared_ptr<State> state;
        bool await_ready() const { return state->done; }
        void await_suspend(std::coroutine_handle<> awaiter) const {
            state->awaiters.push_back(awaiter);
        }
        T await_resume() const {
            if (state->error)
                std::rethrow_exception(state->error);
            if constexpr (!std::is_void_v<T>)
                return *state->value;
        }
    };

    /// The coroutine at the bottom of a task: it destroys itself when the task is over.
    struct Root {
        struct promise_type : detail::CancellationScope {
            promise_type(const std::shared_ptr<State> &state, const Async<T> &) {
                cancellation = state->stop.get_token();
            }
            Root get_return_object() const { return {}; }
            std::suspend_never initial_suspend() const noexcept { return {}; }
            std::suspend_never final_suspend() const noexcept { return {}; }
            void return_void() const {}
            void unhandled_exception() const { std::terminate(); }
        };
    };

    static Root drive(std::shared_ptr<State> state, Async<T> function) {
        try {
            if constexpr (std::is_void_v<T>) {
                co_await std::move(function);
                state->value.emplace();
            } else {
                state->value.emplace(co_await std::move(function));
            }
        } catch (...) {
            state->error = std::current_exception();
        }
        state->done = true;
        for (const auto awaiter : std::exchange(state->awaiters, {}))
            awaiter.resume();
    }

    std::shared_ptr<State> state_;
};

/// A one-shot handle that resumes a suspended function, in a turn of the main queue of its own.
/// Only the first `resume` counts. Copies share the handle. Any thread.
template <class T>
class Continuation {
public:
    void resume(T value) const {
        {
            const std::lock_guard lock(state_->mutex);
            if (state_->value)
                return;
            state_->value.emplace(std::move(value));
        }
        state_->clock.post([state = state_] { state->function.resume(); });
    }

private:
    template <class U, class SetUp>
    friend auto suspend(Clock &clock, SetUp setUp);

    struct State {
        Clock &clock;
        std::coroutine_handle<> function;
        std::mutex mutex;
        std::optional<T> value;
    };
    explicit Continuation(std::shared_ptr<State> state) : state_(std::move(state)) {}

    std::shared_ptr<State> state_;
};

/// Suspends the caller: `setUp` is called with the Continuation<T> that resumes it.
///     const int answer = co_await suspend<int>(clock, [&](Continuation<int> c) { ask(c); });
template <class U, class SetUp>
auto suspend(Clock &clock, SetUp setUp) {
    using State = typename Continuation<U>::State;
    struct Awaiter {
        std::shared_ptr<State> state;
        SetUp setUp;
        bool await_ready() const noexcept { return false; }
        void await_suspend(std::coroutine_handle<> function) {
            state->function = function;
            setUp(Continuation<U>(state));
        }
        U await_resume() const { return std::move(*state->value); }
    };
    return Awaiter{std::shared_ptr<State>(new State{clock, {}, {}, {}}), std::move(setUp)};
}

/// Waits for `delay`, or until the task is cancelled, whichever comes first.
Async<> sleep(Clock &clock, std::chrono::nanoseconds delay);

/// Runs `function` on a background thread and gives its result, or throws what it threw.
template <class Function>
Async<std::invoke_result_t<Function>> inBackground(Clock &clock, Function function) {
    using T = std::invoke_result_t<Function>;
    struct Outcome {
        std::optional<detail::Stored<T>> value;
        std::exception_ptr error;
    };
    auto run = [&clock, function = std::move(function)](Continuation<Outcome> caller) {
        clock.runInBackground([function, caller] {
            Outcome outcome;
            try {
                if constexpr (std::is_void_v<T>) {
                    function();
                    outcome.value.emplace();
                } else {
                    outcome.value.emplace(function());
                }
            } catch (...) {
                outcome.error = std::current_exception();
            }
            caller.resume(std::move(outcome));
        });
    };
    Outcome outcome = co_await suspend<Outcome>(clock, std::move(run));
    if (outcome.error)
        std::rethrow_exception(outcome.error);
    if constexpr (!std::is_void_v<T>)
        co_return std::move(*outcome.value);
}

} // namespace lorvane
