#pragma once

#include <memory>
#include <span>
#include <vector>

struct soxr;

namespace lorvane {

/// Turns a stream of mono samples of any rate into 16 kHz. One thread at a time.
class Resampler {
public:
    /// Throws LocalizedError for a rate that can't be converted.
    explicit Resampler(double sampleRate);

    /// Adds what comes out of `samples` to `output`; some of it comes only with later calls.
    void process(std::span<const float> samples, std::vector<float> &output);
    /// Adds what is still on its way. Nothing may be processed after it.
    void finish(std::vector<float> &output);

private:
    void take(const float *samples, std::size_t count, std::vector<float> &output);

    struct Delete {
        void operator()(soxr *converter) const;
    };
    double ratio_;
    std::unique_ptr<soxr, Delete> converter_; ///< none when the rate is right already
};

/// The mean of the channels of interleaved frames, added to `output`.
void mixToMono(const float *samples, std::size_t frameCount, int channelCount, float *output);

} // namespace lorvane
