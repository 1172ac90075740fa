#pragma once

#include "Platform/AudioFile.h"

namespace lorvane {

/// Audio files through libsndfile. A new file can be read by its owner alone from the moment that
/// it exists, and everything written to it can be read back if the process is killed.
class SndfileAudioFile final : public AudioFile {
public:
    std::unique_ptr<AudioFileWriter> openForWriting(const QString &path,
                                                    const AudioFormat &format) override;
    std::unique_ptr<AudioFileReader> openForReading(const QString &path) override;
};

} // namespace lorvane
