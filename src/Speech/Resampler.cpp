#include "Speech/Resampler.h"

#include "Core/LocalizedError.h"

#include <soxr.h>

#include <cmath>

namespace lorvane {

namespace {
constexpr double targetRate = 16000;
/// The share of the band below half the rate that is kept whole. The models listen to what stands
/// near its upper end: see docs/recogniser.md.
constexpr double passband = 0.98;
} // namespace

void Resampler::Delete::operator()(soxr *converter) const { soxr_delete(converter); }

Resampler::Resampler(double sampleRate) : ratio_(targetRate / sampleRate) {
    if (sampleRate == targetRate)
        return;
    soxr_error_t error = nullptr;
    soxr_quality_spec_t quality = soxr_quality_spec(SOXR_HQ, 0);
    quality.passband_end = passband;
    converter_.reset(soxr_create(sampleRate, targetRate, 1, &error, nullptr, &quality, nullptr));
    if (error || !converter_)
        throw LocalizedError(u"Audio at %1 hertz can’t be converted."_qs.arg(sampleRate));
}

void Resampler::process(std::span<const float> samples, std::vector<float> &output) {
    if (!converter_)
        output.insert(output.end(), samples.begin(), samples.end());
    else if (!samples.empty())
        take(samples.data(), samples.size(), output);
}

void Resampler::finish(std::vector<float> &output) {
    if (converter_)
        take(nullptr, 0, output);
}

void Resampler::take(const float *samples, std::size_t count, std::vector<float> &output) {
    constexpr std::size_t step = 4096;
    while (true) {
        const std::size_t old = output.size();
        const auto expected =
            static_cast<std::size_t>(std::ceil(static_cast<double>(count) * ratio_));
        const std::size_t room = expected + step;
        output.resize(old + room);
        std::size_t used = 0;
        std::size_t made = 0;
        soxr_process(converter_.get(), samples, count, &used, output.data() + old, room, &made);
        output.resize(old + made);
        if (samples) {
            samples += used;
            count -= used;
        }
        if (made < room && count == 0)
            return;
    }
}

void mixToMono(const float *samples, std::size_t frameCount, int channelCount, float *output) {
    const float share = 1.F / static_cast<float>(channelCount);
    for (std::size_t frame = 0; frame < frameCount; ++frame) {
        float sum = 0;
        for (int channel = 0; channel < channelCount; ++channel)
            sum += *samples++;
        output[frame] = sum * share;
    }
}

} // namespace lorvane
