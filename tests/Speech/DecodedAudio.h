#pragma once

#include <QString>

#include <vector>

namespace lorvane {

/// An audio file of any format as mono samples of `sampleRate`, decoded by ffmpeg. Throws
/// std::runtime_error.
std::vector<float> decodedAudio(const QString &path, int sampleRate = 16000);

} // namespace lorvane
