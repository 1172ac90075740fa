#pragma once

#include "Core/AudioChunk.h"
#include "Core/LocalizedError.h"
#include "Platform/AudioFile.h"
#include "Platform/Speech.h"

#include <QString>

#include <memory>
#include <mutex>
#include <optional>

namespace lorvane {

/// The audio of one chunk that can't be had whole.
class RecordingError : public LocalizedError {
public:
    enum class Kind { allocationFailed, unexpectedEnd };
    explicit RecordingError(Kind kind);

    const Kind kind;
};

/// One recording on disk, in a private folder of its own. Every buffer goes to the file first and
/// to the live recognition after that. Shared by the audio thread (`append`) and the main thread
/// (all else). It never deletes anything.
class AudioRecording {
public:
    /// What `append` reports.
    struct Progress {
        double duration = 0; ///< recorded so far, in seconds
        std::optional<QString> error;
    };

    /// Makes the folder and the file. `baseDirectory` stands in for the recovery folder of the
    /// user's data. Throws LocalizedError and leaves what it has made so far.
    AudioRecording(AudioFile &files, const AudioFormat &format,
                   const std::optional<QString> &baseDirectory = std::nullopt);

    /// The folder, the unit of deletion, and "recording.caf" in it. Any thread.
    const QString directory;
    const QString url;
    const AudioFormat format;

    /// Replaces the live request from the next whole buffer on; none detaches it.
    void setLiveRequest(std::shared_ptr<SpeechBufferRequest> request);

    /// Writes the buffer, then hands it to the live request. After the first failure, and once
    /// closed, it does nothing but report.
    Progress append(const AudioBuffer &buffer);

    /// The first failure, also of a buffer that came too late to be reported.
    std::optional<QString> failure() const;

    /// Detaches the live request and closes the file. Harmless when closed already.
    void close();

    /// Cuts a chunk out of a closed recording into "chunk-<index>.caf" in `directory` and gives its
    /// path. Any thread. Throws LocalizedError; a partial file stays behind then.
    static QString writeChunk(AudioFile &files, const QString &url, const AudioChunk &chunk,
                              const QString &directory);

private:
    mutable std::mutex lock_;
    std::unique_ptr<AudioFileWriter> file_;
    std::shared_ptr<SpeechBufferRequest> liveRequest_;
    qint64 frames_ = 0;
    std::optional<QString> failure_;
};

} // namespace lorvane
