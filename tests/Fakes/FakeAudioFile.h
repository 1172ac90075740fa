#pragma once

#include "Core/LocalizedError.h"
#include "Platform/AudioFile.h"

#include <QFile>
#include <QHash>

#include <algorithm>
#include <limits>
#include <memory>
#include <optional>
#include <vector>

namespace lorvane {

/// Audio files whose samples stay in memory. An empty file of the same name stands for each on the
/// disk, so that folders, modes and removal are real.
class FakeAudioFile final : public AudioFile {
public:
    struct Contents {
        AudioFormat format;
        std::vector<float> samples; ///< interleaved
        bool isOpen = true;         ///< while its writer lives

        qint64 frameCount() const { return qint64(samples.size()) / format.channelCount; }
    };

    std::optional<QString> openError; ///< thrown by both ways to open
    QString writeError = QStringLiteral("No space left on device");
    qint64 frameLimit = std::numeric_limits<qint64>::max(); ///< a write past it throws `writeError`
    qint64 missingFrames = 0; ///< how many frames fewer can be read than a file says

    /// What was written to a path; null if nothing was.
    std::shared_ptr<const Contents> contents(const QString &path) const { return files_[path]; }

    std::unique_ptr<AudioFileWriter> openForWriting(const QString &path,
                                                    const AudioFormat &format) override {
        QFile file(path);
        if (openError || !file.open(QIODevice::WriteOnly))
            throw LocalizedError(openError.value_or(file.errorString()));
        file.setPermissions(QFile::ReadOwner | QFile::WriteOwner);
        auto contents = std::make_shared<Contents>(Contents{format, {}});
        files_[path] = contents;
        return std::make_unique<Writer>(*this, contents);
    }

    std::unique_ptr<AudioFileReader> openForReading(const QString &path) override {
        QFile file(path);
        if (openError || !file.open(QIODevice::ReadOnly))
            throw LocalizedError(openError.value_or(file.errorString()));
        if (!files_.contains(path))
            throw LocalizedError(QStringLiteral("Format not recognised"));
        return std::make_unique<Reader>(files_[path], missingFrames);
    }

private:
    class Writer final : public AudioFileWriter {
    public:
        Writer(FakeAudioFile &owner, std::shared_ptr<Contents> contents)
            : owner_(owner), contents_(std::move(contents)) {}
        ~Writer() override { contents_->isOpen = false; }

        void write(const AudioBuffer &buffer) override {
            const qint64 room = std::max<qint64>(0, owner_.frameLimit - contents_->frameCount());
            const qint64 frames = std::min<qint64>(room, buffer.frameCount);
            contents_->samples.insert(contents_->samples.end(), buffer.samples,
                                      buffer.samples + frames * buffer.channelCount);
            if (frames < buffer.frameCount)
                throw LocalizedError(owner_.writeError);
        }

    private:
        FakeAudioFile &owner_;
        std::shared_ptr<Contents> contents_;
    };

    class Reader final : public AudioFileReader {
    public:
        Reader(std::shared_ptr<const Contents> contents, qint64 missingFrames)
            : contents_(std::move(contents)), missingFrames_(missingFrames) {}

        AudioFormat format() const override { return contents_->format; }
        qint64 length() const override { return contents_->frameCount(); }
        qint64 position() const override { return position_; }

        void seek(qint64 frame) override {
            if (frame < 0 || frame > length())
                throw LocalizedError(QStringLiteral("No such frame"));
            position_ = frame;
        }

        qsizetype read(float *samples, qsizetype frameCount) override {
            const qint64 left = std::max<qint64>(0, length() - missingFrames_ - position_);
            const qint64 frames = std::min<qint64>(left, frameCount);
            const qint64 channels = contents_->format.channelCount;
            std::copy_n(contents_->samples.begin() + position_ * channels, frames * channels,
                        samples);
            position_ += frames;
            return frames;
        }

    private:
        std::shared_ptr<const Contents> contents_;
        qint64 missingFrames_;
        qint64 position_ = 0;
    };

    QHash<QString, std::shared_ptr<Contents>> files_;
};

} // namespace lorvane
