#include "Services/AudioRecording.h"

#include "Core/ApplicationSupport.h"

#include <QDir>
#include <QFile>
#include <QUuid>

#include <algorithm>
#include <cmath>
#include <new>
#include <vector>

using namespace Qt::StringLiterals;

namespace lorvane {

namespace {

constexpr auto ownerOnly = QFile::ReadOwner | QFile::WriteOwner;
constexpr qsizetype copyFrames = 4096;

QString makeRecordingFolder(const std::optional<QString> &baseDirectory) {
    const QString parent =
        baseDirectory.value_or(applicationSupportDirectory() + "/Lorvane/Recovery"_L1);
    const QString folder =
        QDir(parent).filePath(QUuid::createUuid().toString(QUuid::WithoutBraces).toUpper());
    if (!QDir().mkpath(parent) || !QDir().mkdir(folder, ownerOnly | QFile::ExeOwner))
        throw LocalizedError(u"The folder “%1” could not be created."_s.arg(folder));
    return folder;
}

void restrictToOwner(const QString &path) {
    QFile file(path);
    if (!file.setPermissions(ownerOnly))
        throw LocalizedError(
            u"The permissions of “%1” could not be set: %2"_s.arg(path, file.errorString()));
}

} // namespace

RecordingError::RecordingError(Kind errorKind)
    : LocalizedError(u"The complete audio chunk could not be read. "
                     "The original recording was kept for recovery."_s),
      kind(errorKind) {}

AudioRecording::AudioRecording(AudioFile &files, const AudioFormat &recordingFormat,
                               const std::optional<QString> &baseDirectory)
    : directory(makeRecordingFolder(baseDirectory)),
      url(directory + "/recording.caf"_L1),
      format(recordingFormat),
      file_(files.openForWriting(url, format)) {
    restrictToOwner(url);
}

void AudioRecording::setLiveRequest(std::shared_ptr<SpeechBufferRequest> request) {
    // Swapped, so that the old one is released outside the lock.
    const std::lock_guard guard(lock_);
    liveRequest_.swap(request);
}

AudioRecording::Progress AudioRecording::append(const AudioBuffer &buffer) {
    const std::lock_guard guard(lock_);
    if (file_ && !failure_) {
        try {
            file_->write(buffer);
            frames_ += buffer.frameCount;
            if (liveRequest_)
                liveRequest_->append(buffer);
        } catch (const LocalizedError &error) {
            failure_ = u"Audio capture failed: "_s + error.localizedDescription();
        }
    }
    return {static_cast<double>(frames_) / format.sampleRate, failure_};
}

std::optional<QString> AudioRecording::failure() const {
    const std::lock_guard guard(lock_);
    return failure_;
}

void AudioRecording::close() {
    const std::lock_guard guard(lock_);
    liveRequest_.reset();
    file_.reset();
}

QString AudioRecording::writeChunk(AudioFile &files, const QString &url, const AudioChunk &chunk,
                                   const QString &directory) {
    const auto source = files.openForReading(url);
    const AudioFormat format = source->format();
    // Rounded outward, so that a chunk never loses a frame at either edge.
    const auto frameAt = [&](double rounded) {
        return std::min(static_cast<qint64>(rounded), source->length());
    };
    const qint64 startFrame = frameAt(std::floor(chunk.start * format.sampleRate));
    const qint64 endFrame = frameAt(std::ceil(chunk.end * format.sampleRate));

    const QString path = directory + "/chunk-"_L1 + QString::number(chunk.index) + ".caf"_L1;
    const auto output = files.openForWriting(path, format);
    restrictToOwner(path);
    source->seek(startFrame);

    std::vector<float> samples;
    try {
        samples.resize(static_cast<size_t>(copyFrames * format.channelCount));
    } catch (const std::bad_alloc &) {
        throw RecordingError(RecordingError::Kind::allocationFailed);
    }
    while (source->position() < endFrame) {
        const qsizetype wanted = std::min<qsizetype>(copyFrames, endFrame - source->position());
        const qsizetype got = source->read(samples.data(), wanted);
        if (got == 0)
            throw RecordingError(RecordingError::Kind::unexpectedEnd);
        output->write({samples.data(), got, format.channelCount});
    }
    return path;
}

} // namespace lorvane
