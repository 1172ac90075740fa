#pragma once

#include <QByteArrayView>

#include <functional>

namespace lorvane {

/// Takes the bytes of something long, piece by piece. The bytes are gone when the call returns.
using ByteSink = std::function<void(QByteArrayView)>;

} // namespace lorvane
