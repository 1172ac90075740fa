#pragma once

#include "Platform/Audio.h"
#include "Platform/AudioFile.h"

#include <algorithm>
#include <vector>

namespace lorvane {

/// As many frames as the audio thread gets at a time.
constexpr qsizetype bufferFrames = 2048;

/// A signal whose every sample tells its frame and its channel, to see what is lost or doubled.
class CountedSound {
public:
    explicit CountedSound(const AudioFormat &format) : format_(format) {}

    static float sample(qint64 frame, int channel) {
        constexpr qint64 period = 1 << 20; // as many as a float has places for between 0 and 1
        const float value = float(frame % period) / float(period);
        return channel % 2 ? -value : value;
    }

    /// The next frames; valid until the next call. Without allocation up to `longest` frames.
    AudioBuffer next(qsizetype frameCount) {
        samples_.resize(size_t(frameCount * format_.channelCount));
        auto sampleAt = samples_.begin();
        for (qsizetype i = 0; i < frameCount; ++i, ++frames_) {
            for (int channel = 0; channel < format_.channelCount; ++channel)
                *sampleAt++ = sample(frames_, channel);
        }
        return {samples_.data(), frameCount, format_.channelCount};
    }
    void reserve(qsizetype longest) { samples_.reserve(size_t(longest * format_.channelCount)); }

    qint64 frames() const { return frames_; }

    /// How many frames of interleaved samples go on counting from `first`.
    static qint64 framesFrom(qint64 first, const std::vector<float> &samples, int channelCount) {
        const auto frameCount = qint64(samples.size()) / channelCount;
        for (qint64 frame = 0; frame < frameCount; ++frame) {
            for (int channel = 0; channel < channelCount; ++channel) {
                if (samples[size_t(frame * channelCount + channel)] !=
                    sample(first + frame, channel))
                    return frame;
            }
        }
        return frameCount;
    }

private:
    AudioFormat format_;
    std::vector<float> samples_;
    qint64 frames_ = 0;
};

/// All that can be read from a file, interleaved.
inline std::vector<float> readAll(AudioFileReader &file) {
    std::vector<float> samples;
    std::vector<float> piece(size_t(4096 * file.format().channelCount));
    while (const qsizetype count = file.read(piece.data(), 4096))
        samples.insert(samples.end(), piece.begin(),
                       piece.begin() + count * file.format().channelCount);
    return samples;
}

inline const AudioFormat everyFormat[] = {{16000, 1}, {16000, 2}, {44100, 1}, {44100, 2},
                                          {48000, 1}, {48000, 2}, {96000, 1}, {96000, 2}};

} // namespace lorvane
