#include "Speech/LiveRequest.h"

#include "Speech/Resampler.h"

#include <algorithm>

namespace lorvane {

LiveRequest::LiveRequest(const AudioFormat &format)
    : sampleRate_(format.sampleRate),
      samples_(static_cast<std::size_t>(std::max(0.0, format.sampleRate * longest))) {}

void LiveRequest::append(const AudioBuffer &buffer) {
    if (buffer.channelCount < 1 || buffer.frameCount < 1)
        return;
    const std::size_t size = size_.load(std::memory_order_relaxed);
    const std::size_t count =
        std::min(static_cast<std::size_t>(buffer.frameCount), samples_.size() - size);
    mixToMono(buffer.samples, count, buffer.channelCount, samples_.data() + size);
    size_.store(size + count, std::memory_order_release);
}

std::span<const float> LiveRequest::from(std::size_t position) const {
    const std::size_t size = size_.load(std::memory_order_acquire);
    return std::span(samples_).subspan(position, size - position);
}

} // namespace lorvane
