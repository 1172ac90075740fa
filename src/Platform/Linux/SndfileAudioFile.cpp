#include "Platform/Linux/SndfileAudioFile.h"

#include "Core/LocalizedError.h"

#include <QFile>
#include <QFileInfo>

#include <sndfile.h>

#include <cerrno>
#include <cmath>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace lorvane {
namespace {

[[noreturn]] void throwSystemError(int error) { throw LocalizedError(qt_error_string(error)); }

/// The library's words for the last error, those of the system alone where it was the system's.
[[noreturn]] void throwError(SNDFILE *file) {
    QString reason = QString::fromUtf8(sf_strerror(file));
    const QString prefix = QStringLiteral("System error : ");
    if (reason.startsWith(prefix))
        reason = reason.mid(prefix.size());
    while (reason.endsWith(u'.'))
        reason.chop(1);
    throw LocalizedError(reason);
}

class Descriptor {
public:
    Descriptor(const QString &path, int flags)
        : number_(
              ::open(QFile::encodeName(path).constData(), flags | O_CLOEXEC, S_IRUSR | S_IWUSR)) {
        if (number_ < 0)
            throwSystemError(errno);
    }
    Descriptor(Descriptor &&other) noexcept : number_(std::exchange(other.number_, -1)) {}
    Descriptor &operator=(Descriptor &&) = delete;
    ~Descriptor() {
        if (number_ >= 0)
            ::close(number_);
    }

    int number() const { return number_; }

private:
    int number_;
};

/// An open SNDFILE and the descriptor beneath it, which the library doesn't close.
class Sound {
public:
    Sound(Descriptor descriptor, int mode, SF_INFO info)
        : descriptor_(std::move(descriptor)),
          info_(info),
          file_(sf_open_fd(descriptor_.number(), mode, &info_, SF_FALSE)) {
        if (!file_)
            throwError(nullptr);
    }
    Sound(const Sound &) = delete;
    Sound &operator=(const Sound &) = delete;
    ~Sound() { sf_close(file_); }

    const SF_INFO &info() const { return info_; }
    SNDFILE *file() const { return file_; }
    void check() const {
        if (sf_error(file_) != SF_ERR_NO_ERROR)
            throwError(file_);
    }

private:
    Descriptor descriptor_;
    SF_INFO info_;
    SNDFILE *file_;
};

class SndfileWriter final : public AudioFileWriter {
public:
    SndfileWriter(Descriptor descriptor, const SF_INFO &info)
        : sound_(std::move(descriptor), SFM_WRITE, info) {
        // The header follows each write: what a killed process wrote can be read.
        sf_command(sound_.file(), SFC_SET_UPDATE_HEADER_AUTO, nullptr, SF_TRUE);
        sf_command(sound_.file(), SFC_UPDATE_HEADER_NOW, nullptr, 0);
        sound_.check();
    }

    void write(const AudioBuffer &buffer) override {
        if (buffer.channelCount != sound_.info().channels)
            throw LocalizedError(QStringLiteral("The number of channels has changed"));
        const sf_count_t written =
            sf_writef_float(sound_.file(), buffer.samples, buffer.frameCount);
        if (written != buffer.frameCount)
            throwError(sound_.file());
        sound_.check();
    }

private:
    Sound sound_;
};

class SndfileReader final : public AudioFileReader {
public:
    explicit SndfileReader(const QString &path)
        : sound_(Descriptor(path, O_RDONLY), SFM_READ, SF_INFO{}) {}

    AudioFormat format() const override {
        return {double(sound_.info().samplerate), sound_.info().channels};
    }
    qint64 length() const override { return sound_.info().frames; }
    qint64 position() const override { return position_; }

    void seek(qint64 frame) override {
        if (frame < 0 || frame > length())
            throwSystemError(EINVAL);
        if (frame != position_ && sf_seek(sound_.file(), frame, SF_SEEK_SET) != frame)
            throwError(sound_.file());
        position_ = frame;
    }

    qsizetype read(float *samples, qsizetype frameCount) override {
        const sf_count_t count = sf_readf_float(sound_.file(), samples, frameCount);
        if (count < frameCount)
            sound_.check();
        position_ += count;
        return qsizetype(count);
    }

private:
    Sound sound_;
    qint64 position_ = 0;
};

} // namespace

std::unique_ptr<AudioFileWriter> SndfileAudioFile::openForWriting(const QString &path,
                                                                  const AudioFormat &format) {
    SF_INFO info{};
    info.format = SF_FORMAT_CAF | SF_FORMAT_FLOAT;
    info.samplerate = int(std::lround(format.sampleRate));
    info.channels = format.channelCount;
    if (!format.isUsable() || !sf_format_check(&info))
        throw LocalizedError(QStringLiteral("The audio format can’t be written to a file"));

    Descriptor descriptor(path, O_RDWR | O_CREAT | O_TRUNC);
    // The mode given at creation is cut by the umask and counts for new files only.
    if (::fchmod(descriptor.number(), S_IRUSR | S_IWUSR) != 0)
        throwSystemError(errno);
    return std::make_unique<SndfileWriter>(std::move(descriptor), info);
}

std::unique_ptr<AudioFileReader> SndfileAudioFile::openForReading(const QString &path) {
    // The library takes a file for damaged that has grown by a few buffers since it asked for its
    // length, for the head tells of more by then. That can only be if it has grown.
    qint64 length = QFileInfo(path).size();
    while (true) {
        try {
            return std::make_unique<SndfileReader>(path);
        } catch (const LocalizedError &) {
            const qint64 present = QFileInfo(path).size();
            if (present == length)
                throw;
            length = present;
        }
    }
}

} // namespace lorvane
