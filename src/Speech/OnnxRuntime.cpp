#include "Speech/OnnxRuntime.h"

#include "Core/LocalizedError.h"
#include "Speech/Abandoned.h"
#include "Speech/Turns.h"

#include <QFile>

namespace lorvane {

namespace {

Ort::Env makeEnvironment(int threadCount) {
    Ort::ThreadingOptions threads;
    threads.SetGlobalIntraOpNumThreads(threadCount);
    threads.SetGlobalInterOpNumThreads(1);
    threads.SetGlobalSpinControl(0); // an idle recogniser must not keep a core busy
    return Ort::Env(threads, ORT_LOGGING_LEVEL_FATAL, "lorvane");
}

QString reason(const Ort::Exception &error) { return QString::fromUtf8(error.what()); }

} // namespace

OnnxRuntime::OnnxRuntime(int threadCount) try : environment_(makeEnvironment(threadCount)) {
} catch (const Ort::Exception &error) {
    throw LocalizedError(u"The speech runtime could not be started: "_qs + reason(error));
}

Ort::Session OnnxRuntime::open(const QString &path) try {
    const Turns::Turn turn({});
    Ort::SessionOptions options;
    options.DisablePerSessionThreads();
    // Keeps the output matrix of the decoder from being converted to floats at every token. The
    // arena only helps without it, and holds on to memory.
    options.AddConfigEntry("session.disable_quant_qdq", "1");
    options.DisableCpuMemArena();
    return Ort::Session(environment_, QFile::encodeName(path).constData(), options);
} catch (const Ort::Exception &error) {
    throw LocalizedError(
        u"The speech model “%1” could not be loaded: %2"_qs.arg(path, reason(error)));
}

std::vector<Ort::Value> run(Ort::Session &session, const std::vector<const char *> &inputNames,
                            const std::vector<Ort::Value> &inputs,
                            const std::vector<const char *> &outputNames,
                            const std::stop_token &stop) {
    const Turns::Turn turn(stop);
    Ort::RunOptions options;
    const std::stop_callback terminate(stop, [&options] { options.SetTerminate(); });
    if (stop.stop_requested())
        throw Abandoned();
    try {
        return session.Run(options, inputNames.data(), inputs.data(), inputs.size(),
                           outputNames.data(), outputNames.size());
    } catch (const Ort::Exception &error) {
        if (stop.stop_requested())
            throw Abandoned();
        throw LocalizedError(u"The speech model failed: "_qs + reason(error));
    }
}

} // namespace lorvane
