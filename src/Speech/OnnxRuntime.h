#pragma once

#include <QString>

#include <onnxruntime/onnxruntime_cxx_api.h>

#include <stop_token>

namespace lorvane {

/// The runtime that all models share, with its pool of threads. One for the process; it outlives
/// its sessions.
class OnnxRuntime {
public:
    /// Throws LocalizedError.
    explicit OnnxRuntime(int threadCount);

    /// Opens a model file. Throws LocalizedError when it is missing or damaged.
    Ort::Session open(const QString &path);

private:
    Ort::Env environment_;
};

/// Runs `session` until it is done or `stop` is asked for, which takes effect at the next operation
/// of the model. Throws LocalizedError.
std::vector<Ort::Value> run(Ort::Session &session, const std::vector<const char *> &inputNames,
                            const std::vector<Ort::Value> &inputs,
                            const std::vector<const char *> &outputNames,
                            const std::stop_token &stop);

/// A tensor that looks at `data`, which has to outlive it.
template <class T>
Ort::Value tensorOf(T *data, const std::vector<int64_t> &shape) {
    const auto memory = Ort::MemoryInfo::CreateCpu(OrtDeviceAllocator, OrtMemTypeCPU);
    std::size_t count = 1;
    for (const int64_t size : shape)
        count *= static_cast<std::size_t>(size);
    return Ort::Value::CreateTensor<T>(memory, data, count, shape.data(), shape.size());
}

} // namespace lorvane
