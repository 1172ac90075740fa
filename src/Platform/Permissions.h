#pragma once

#include "Platform/Task.h"

namespace lorvane {

/// The three grants that the user gives to the program. Main thread only; a query is answered from
/// what is known at that moment, and may take a fifth of a second only the first time.
class Permissions {
public:
    Permissions() = default;
    Permissions(const Permissions &) = delete;
    Permissions &operator=(const Permissions &) = delete;
    virtual ~Permissions() = default;

    /// 0 not determined, 1 restricted, 2 denied, 3 authorized.
    virtual int microphoneStatus() = 0;
    /// 0 not determined, 1 denied, 2 restricted, 3 authorized.
    virtual int speechStatus() = 0;

    /// Asks the user if that was never answered, and gives whether access is granted.
    virtual Async<bool> requestMicrophone() = 0;
    /// The same for speech recognition; gives a status as `speechStatus`.
    virtual Async<int> requestSpeech() = 0;

    /// Whether fields of other applications can be read and a key be typed into them.
    virtual bool accessibilityTrusted() = 0;
    virtual void requestAccessibility() = 0;
};

} // namespace lorvane
