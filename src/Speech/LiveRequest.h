#pragma once

#include "Platform/Speech.h"

#include <atomic>
#include <span>
#include <vector>

namespace lorvane {

/// The audio of a live request, mono at the rate it came with. All its memory is there from the
/// start, so that the audio thread neither allocates nor waits: it appends, one other thread reads.
class LiveRequest : public SpeechBufferRequest {
public:
    /// A little less than what the model can take; a request is over when it is full.
    static constexpr double longest = 34;

    explicit LiveRequest(const AudioFormat &format);

    /// What finds no room any more is dropped.
    void append(const AudioBuffer &buffer) override;

    double sampleRate() const { return sampleRate_; }
    bool isFull() const { return size_.load(std::memory_order_acquire) == samples_.size(); }
    /// What has been appended after the first `position` samples.
    std::span<const float> from(std::size_t position) const;

private:
    double sampleRate_;
    std::vector<float> samples_;
    std::atomic<std::size_t> size_ = 0; ///< of the samples that the reader may look at
};

} // namespace lorvane
