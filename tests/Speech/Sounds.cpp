#include "Speech/Sounds.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <random>

namespace lorvane {

namespace {

using std::numbers::pi;

/// Samples of `seconds` whose value at a time is `wave(seconds)`.
template <class Wave>
std::vector<float> sampled(double seconds, int sampleRate, Wave wave) {
    std::vector<float> samples(static_cast<std::size_t>(seconds * sampleRate));
    for (std::size_t i = 0; i < samples.size(); ++i)
        samples[i] = static_cast<float>(wave(static_cast<double>(i) / sampleRate));
    return samples;
}

/// Noise through a resonance around `frequency`, as wide as half of it: air in a mouth.
class Air {
public:
    Air(double frequency, int sampleRate)
        : radius_(std::exp(-pi * frequency / 2 / sampleRate)),
          feedback_(2 * radius_ * std::cos(2 * pi * frequency / sampleRate)) {}

    double next() {
        const double value =
            (1 - radius_) * noise_(random_) + feedback_ * last_ - radius_ * radius_ * before_;
        before_ = last_;
        return last_ = value;
    }

private:
    const double radius_;
    const double feedback_;
    std::mt19937 random_{1};
    std::normal_distribution<double> noise_;
    double last_ = 0;
    double before_ = 0;
};

/// In for 1.2 seconds, out for 1.5, and a rest.
std::vector<float> breath(int sampleRate) {
    Air in(1800, sampleRate);
    Air out(700, sampleRate);
    return sampled(9, sampleRate, [&](double time) {
        const double phase = std::fmod(time, 3.5);
        const double inward = in.next();
        const double outward = out.next();
        if (phase < 1.2)
            return 0.15 * inward * std::sin(pi * phase / 1.2);
        if (phase > 1.4 && phase < 2.9)
            return 0.2 * outward * std::sin(pi * (phase - 1.4) / 1.5);
        return 0.0;
    });
}

/// Some six keys a second, each a click when it goes down and a softer one when it comes up.
std::vector<float> typing(int sampleRate) {
    std::mt19937 random(2);
    std::normal_distribution<double> noise;
    std::uniform_real_distribution<double> pause(0.08, 0.28);
    std::vector<float> samples(static_cast<std::size_t>(8 * sampleRate));
    const auto click = [&](double time, double level, double thud) {
        const auto first = static_cast<std::size_t>(time * sampleRate);
        for (std::size_t i = first; i < samples.size(); ++i) {
            const double after = static_cast<double>(i - first) / sampleRate;
            if (after > 0.06)
                break;
            samples[i] += static_cast<float>(
                level * (noise(random) * std::exp(-after / 0.003) +
                         0.5 * std::sin(2 * pi * thud * after) * std::exp(-after / 0.015)));
        }
    };
    double time = 0.2;
    while (time < 7.8) {
        click(time, 0.2, 180 + 100 * pause(random));
        click(time + 0.07, 0.08, 400);
        time += pause(random);
    }
    return samples;
}

std::vector<float> hum(int sampleRate) {
    return sampled(8, sampleRate, [](double time) {
        double sum = 0;
        for (int harmonic = 1; harmonic <= 9; ++harmonic)
            sum += std::sin(2 * pi * 50 * harmonic * time) / harmonic;
        return 0.1 * sum;
    });
}

/// The tone of a string that was struck `after` seconds ago.
double tone(double frequency, double after) {
    double sum = 0;
    for (int harmonic = 1; harmonic <= 5; ++harmonic)
        sum += std::sin(2 * pi * frequency * harmonic * after) / (harmonic * harmonic);
    return sum * std::exp(-after / 0.5) * std::min(after / 0.005, 1.0);
}

double frequencyOf(int semitones) { return 220 * std::pow(2, semitones / 12.0); }

/// Four chords of two seconds, and a melody on them in quarters of a second.
std::vector<float> music(int sampleRate) {
    constexpr int chords[][3] = {{0, 3, 7}, {-4, 0, 3}, {-9, -5, -2}, {-2, 2, 5}};
    constexpr int melody[] = {12, 15, 19, 15, 20, 19, 15, 12, 15, 19, 22, 19, 17, 14, 10, 14};
    return sampled(8, sampleRate, [&](double time) {
        double sum = 0;
        for (const int note : chords[static_cast<int>(time / 2) % 4])
            sum += tone(frequencyOf(note), std::fmod(time, 2));
        sum += tone(frequencyOf(melody[static_cast<int>(time * 4) % 16]), std::fmod(time, 0.25));
        return 0.08 * sum;
    });
}

} // namespace

std::vector<Sound> soundsWithoutVoice(int sampleRate) {
    return {{"breath", breath(sampleRate)},
            {"typing", typing(sampleRate)},
            {"hum", hum(sampleRate)},
            {"music", music(sampleRate)}};
}

} // namespace lorvane
