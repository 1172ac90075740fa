#include "LongRecording.h"

#include "Speech/DecodedAudio.h"

#include <algorithm>
#include <map>

namespace lorvane {

namespace {
constexpr int sampleRate = 48000;
}

std::vector<Part> writeRecording(AudioFile &audioFile, const QString &path,
                                 const std::vector<Clip> &clips, double seconds,
                                 std::mt19937 &random) {
    const auto writer = audioFile.openForWriting(path, {sampleRate, 1});
    std::vector<Part> parts;
    std::vector<std::size_t> order(clips.size());
    std::map<const Clip *, std::vector<float>> decoded;
    double time = 0;
    const auto write = [&](const std::vector<float> &samples) {
        writer->write({samples.data(), static_cast<qsizetype>(samples.size()), 1});
        time += static_cast<double>(samples.size()) / sampleRate;
    };
    while (time < seconds) {
        if (parts.size() % clips.size() == 0) {
            for (std::size_t i = 0; i < order.size(); ++i)
                order[i] = i;
            std::shuffle(order.begin(), order.end(), random);
        }
        const Clip &clip = clips[order[parts.size() % clips.size()]];
        std::vector<float> &samples = decoded[&clip];
        if (samples.empty())
            samples = decodedAudio(clip.path, sampleRate);
        const double start = time;
        write(samples);
        parts.push_back({&clip, start, time});
        const double pause = std::uniform_real_distribution(0.3, 2.5)(random);
        write(std::vector<float>(static_cast<std::size_t>(pause * sampleRate)));
    }
    return parts;
}

std::vector<Clip> readSpeech(const QStringList &folders) {
    std::vector<Clip> clips;
    for (const QString &folder : folders) {
        for (Clip &clip : readClips(QDir(folder), u"clips.tsv"_qs)) {
            if (!clip.transcript.isEmpty())
                clips.push_back(std::move(clip));
        }
    }
    return clips;
}

} // namespace lorvane
