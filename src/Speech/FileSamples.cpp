#include "Speech/FileSamples.h"

#include "Core/LocalizedError.h"
#include "Speech/Abandoned.h"
#include "Speech/Resampler.h"

namespace lorvane {

std::vector<float> readSamples(AudioFile &audioFile, const QString &path,
                               const std::stop_token &stop) {
    const std::unique_ptr<AudioFileReader> reader = audioFile.openForReading(path);
    const AudioFormat format = reader->format();
    if (!format.isUsable())
        throw LocalizedError(u"There is no audio in “%1”."_qs.arg(path));

    constexpr qsizetype blockSize = 16384;
    std::vector<float> block(static_cast<std::size_t>(blockSize * format.channelCount));
    std::vector<float> mono(static_cast<std::size_t>(blockSize));
    std::vector<float> samples;
    Resampler resampler(format.sampleRate);
    while (const qsizetype frameCount = reader->read(block.data(), blockSize)) {
        if (stop.stop_requested())
            throw Abandoned();
        mixToMono(block.data(), static_cast<std::size_t>(frameCount), format.channelCount,
                  mono.data());
        resampler.process(std::span(mono).first(static_cast<std::size_t>(frameCount)), samples);
    }
    resampler.finish(samples);
    return samples;
}

} // namespace lorvane
