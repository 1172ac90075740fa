#pragma once

#include "Platform/AudioFile.h"
#include <stop_token>
#include <vector>

namespace lorvane {

/// The whole of a file as mono samples at 16 kHz. Throws LocalizedError, and Abandoned once `stop`
/// is asked for.
std::vector<float> readSamples(AudioFile &audioFile, const QString &path,
                               const std::stop_token &stop);

} // namespace lorvane
