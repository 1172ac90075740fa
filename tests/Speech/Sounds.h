#pragma once

#include <vector>

namespace lorvane {

/// What a microphone picks up when nobody speaks: mono samples, always the same ones.
struct Sound {
    const char *name;
    std::vector<float> samples;
};

/// Breathing, typing, the hum of the mains and simple music, each some seconds long.
std::vector<Sound> soundsWithoutVoice(int sampleRate);

} // namespace lorvane
