#pragma once

#include <atomic>
#include <condition_variable>
#include <mutex>
#include <stop_token>
#include <vector>

namespace lorvane {

/// How soon a thread's work is needed, the most urgent last.
enum class Urgency {
    ahead,   ///< by nobody yet
    preview, ///< while the user speaks
    awaited, ///< the user waits for it
};

/// Lets a few threads at a time run a model, the most urgent first. A turn is one run, so that what
/// is urgent waits for no more than that. Any thread.
class Turns {
public:
    explicit Turns(int atOnce) : free_(atOnce) {}

    /// How many threads wait for a turn.
    std::size_t waiterCount() const;

    /// Has the calling thread take turns for as long as this lives. One that does not never waits.
    class Lane {
    public:
        /// Both outlive this.
        Lane(Turns &turns, const std::atomic<Urgency> &urgency);
        Lane(const Lane &) = delete;
        Lane &operator=(const Lane &) = delete;
        ~Lane();

    private:
        friend class Turns;
        Turns &turns_;
        const std::atomic<Urgency> &urgency_;
    };

    /// A turn of the calling thread's.
    class Turn {
    public:
        /// Waits for it. Throws Abandoned once `stop` is asked for.
        explicit Turn(const std::stop_token &stop);
        Turn(const Turn &) = delete;
        Turn &operator=(const Turn &) = delete;
        ~Turn();

    private:
        Lane *const lane_;
    };

private:
    void take(const Lane &lane, const std::stop_token &stop);
    void giveBack();

    mutable std::mutex mutex_;
    std::condition_variable_any changed_;
    int free_;
    std::vector<const Lane *> waiting_;
};

} // namespace lorvane
