#pragma once

#include "Clips.h"
#include "Platform/AudioFile.h"

#include <random>

namespace lorvane {

/// A clip within a long recording: where it stands, in seconds.
struct Part {
    const Clip *clip;
    double start;
    double end;
};

/// Writes a mono recording of `clips`, at the rate of a microphone, one after the other in random
/// order with pauses of random length, and gives its parts. It lasts at least so many seconds.
std::vector<Part> writeRecording(AudioFile &audioFile, const QString &path,
                                 const std::vector<Clip> &clips, double seconds,
                                 std::mt19937 &random);

/// The clips of some folders in which somebody speaks. Throws LocalizedError.
std::vector<Clip> readSpeech(const QStringList &folders);

} // namespace lorvane
