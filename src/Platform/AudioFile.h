#pragma once

#include "Platform/Audio.h"

#include <QString>

#include <memory>

namespace lorvane {

/// A file being written from its start. Destroying it closes it. One thread at a time.
class AudioFileWriter {
public:
    AudioFileWriter() = default;
    AudioFileWriter(const AudioFileWriter &) = delete;
    AudioFileWriter &operator=(const AudioFileWriter &) = delete;
    virtual ~AudioFileWriter() = default;

    /// Appends the whole buffer; what has been written can be read back even if the process is
    /// killed. Throws LocalizedError, for instance when the disk is full. Does not allocate.
    virtual void write(const AudioBuffer &buffer) = 0;
};

/// A file open for reading. One thread at a time.
class AudioFileReader {
public:
    AudioFileReader() = default;
    AudioFileReader(const AudioFileReader &) = delete;
    AudioFileReader &operator=(const AudioFileReader &) = delete;
    virtual ~AudioFileReader() = default;

    virtual AudioFormat format() const = 0;
    /// In frames, as the file says.
    virtual qint64 length() const = 0;
    virtual qint64 position() const = 0;
    /// Moves to a frame from 0 to length(). Throws LocalizedError.
    virtual void seek(qint64 frame) = 0;
    /// Reads up to `frameCount` interleaved frames into `samples` and gives the number read, 0 at
    /// the end. Throws LocalizedError.
    virtual qsizetype read(float *samples, qsizetype frameCount) = 0;
};

/// Audio files in the Core Audio Format, 32-bit float. Any thread.
class AudioFile {
public:
    AudioFile() = default;
    AudioFile(const AudioFile &) = delete;
    AudioFile &operator=(const AudioFile &) = delete;
    virtual ~AudioFile() = default;

    /// Creates or replaces the file. Throws LocalizedError.
    virtual std::unique_ptr<AudioFileWriter> openForWriting(const QString &path,
                                                            const AudioFormat &format) = 0;
    /// Reads any format that the library behind it knows. A file may still be written meanwhile.
    /// Throws LocalizedError.
    virtual std::unique_ptr<AudioFileReader> openForReading(const QString &path) = 0;
};

} // namespace lorvane
