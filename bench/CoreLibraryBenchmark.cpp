#include "Core/LibraryFormat.h"
#include "Core/LocalRepository.h"

#include <QFile>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>
#include <rapidjson/document.h>

#include <algorithm>
#include <chrono>
#include <cmath>

#include <fcntl.h>
#include <unistd.h>

// A large library against the least that any program could do with the same bytes. The two take
// turns, so that a slow moment of the machine meets both, and their fastest runs are compared: what
// slows a run down is other work on the machine.

namespace lorvane {
namespace {

using Clock = std::chrono::steady_clock;

AppSnapshot largeLibrary() {
    const QStringList words = QStringLiteral("the report that we sent to the board today says more "
                                             "about naïve plans than “numbers” do, and it’s late")
                                  .split(u' ');
    AppSnapshot snapshot;
    const QDateTime start(QDate(2026, 3, 14), QTime(9, 26, 53), Qt::UTC);
    qsizetype next = 0;
    for (int i = 0; i < 100'000; ++i) {
        QStringList text;
        for (int word = 0; word < 60; ++word)
            text.append(words.at((next += 7) % words.size()));
        snapshot.history.append(
            {QUuid::createUuid(), start.addSecs(i), text.join(u' '), 0.25 * (i % 400)});
    }
    return snapshot;
}

double seconds(Clock::duration duration) { return std::chrono::duration<double>(duration).count(); }

/// Times the two by turns and reports the ratio of their fastest runs.
template <typename Ours, typename Bare>
void compare(benchmark::State &state, qsizetype bytes, Ours &&ours, Bare &&bare) {
    bare(); // from here on both meet warm caches, and the old file that they replace
    ours();
    double oursFastest = INFINITY, bareFastest = INFINITY;
    for ([[maybe_unused]] auto _ : state) {
        const auto start = Clock::now();
        bare();
        const auto middle = Clock::now();
        ours();
        const auto end = Clock::now();
        bareFastest = std::min(bareFastest, seconds(middle - start));
        oursFastest = std::min(oursFastest, seconds(end - middle));
        state.SetIterationTime(seconds(end - middle));
    }
    state.counters["MB"] = static_cast<double>(bytes) / 1e6;
    state.counters["ours_ms"] = 1000 * oursFastest;
    state.counters["bare_ms"] = 1000 * bareFastest;
    state.counters["ratio"] = oursFastest / bareFastest;
}

void loadAgainstBareParse(benchmark::State &state) {
    const QTemporaryDir folder;
    const LocalRepository repository(folder.filePath(QStringLiteral("library.json")));
    repository.save(largeLibrary());
    QFile file(repository.fileURL());
    if (!file.open(QIODevice::ReadOnly))
        return state.SkipWithError("no library");
    const QByteArray bytes = file.readAll();
    compare(
        state, bytes.size(), [&] { benchmark::DoNotOptimize(repository.load().history.size()); },
        [&] {
            rapidjson::Document document;
            document.Parse(bytes.constData(), static_cast<std::size_t>(bytes.size()));
            benchmark::DoNotOptimize(document.HasParseError());
        });
}
BENCHMARK(loadAgainstBareParse)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(15);

void saveAgainstBareWrite(benchmark::State &state) {
    const QTemporaryDir folder;
    const LocalRepository repository(folder.filePath(QStringLiteral("library.json")));
    const AppSnapshot library = largeLibrary();
    const QByteArray bytes = encodeLibrary(library);
    const QByteArray barePath = QFile::encodeName(folder.filePath(QStringLiteral("bare")));
    compare(
        state, bytes.size(), [&] { repository.save(library); },
        [&] {
            const int file = ::open(barePath.constData(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
            qsizetype written = 0;
            while (written < bytes.size()) {
                const ssize_t count = ::write(file, bytes.constData() + written,
                                              static_cast<std::size_t>(bytes.size() - written));
                if (count <= 0)
                    return state.SkipWithError("the bare write failed");
                written += count;
            }
            ::fsync(file);
            ::close(file);
        });
}
BENCHMARK(saveAgainstBareWrite)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(15);

} // namespace
} // namespace lorvane
