#include "Speech/DecodedAudio.h"

#include <QProcess>

#include <cstring>
#include <stdexcept>

namespace lorvane {

std::vector<float> decodedAudio(const QString &path, int sampleRate) {
    // ffmpeg's own resampler would take away the highest sounds, which the models listen to.
    const QString resample = u"aresample=%1:resampler=soxr:cutoff=0.99"_qs.arg(sampleRate);
    QProcess ffmpeg;
    ffmpeg.start(u"ffmpeg"_qs, {u"-v"_qs, u"error"_qs, u"-nostdin"_qs, u"-i"_qs, path, u"-af"_qs,
                                resample, u"-f"_qs, u"f32le"_qs, u"-ac"_qs, u"1"_qs, u"-"_qs});
    if (!ffmpeg.waitForFinished(-1) || ffmpeg.exitStatus() != QProcess::NormalExit ||
        ffmpeg.exitCode() != 0)
        throw std::runtime_error("ffmpeg could not decode " + path.toStdString() + ": " +
                                 ffmpeg.readAllStandardError().toStdString());
    const QByteArray bytes = ffmpeg.readAllStandardOutput();
    std::vector<float> samples(static_cast<std::size_t>(bytes.size()) / sizeof(float));
    std::memcpy(samples.data(), bytes.constData(), samples.size() * sizeof(float));
    return samples;
}

} // namespace lorvane
