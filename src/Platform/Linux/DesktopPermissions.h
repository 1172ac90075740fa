#pragma once

#include "Platform/Linux/AccessibilitySwitch.h"
#include "Platform/Linux/PermissionStore.h"
#include "Platform/Permissions.h"
#include "Platform/UserDefaults.h"

#include <functional>
#include <optional>

namespace lorvane {

/// The grants as the desktop keeps them: microphone and speech recognition in its permission store,
/// or in the user defaults where there is none; accessibility as the accessibility bus says.
class DesktopPermissions final : public Permissions {
public:
    /// Asks the user a question to be answered with Allow or Don’t Allow; gives whether it's
    /// allowed.
    using Prompt = std::function<Async<bool>(QString question)>;

    /// `canPostKeys` says whether a key can be typed into another application now.
    DesktopPermissions(QDBusConnection sessionBus, UserDefaults &defaults, Prompt prompt,
                       std::function<bool()> canPostKeys);

    int microphoneStatus() override;
    int speechStatus() override;
    Async<bool> requestMicrophone() override;
    Async<int> requestSpeech() override;
    bool accessibilityTrusted() override;
    void requestAccessibility() override;

private:
    using Entry = PermissionStore::Entry;

    /// One grant of the permission store, and its prompt while that stands.
    struct Grant {
        QString table;
        QString id;
        QString question;
        std::optional<Entry> last = {}; // what the store held when it was last reached
        bool isWriteForbidden = false;
        Task<bool> prompt = {};
    };

    Entry read(Grant &grant);
    Async<> write(Grant &grant, bool isAllowed);
    Async<> request(Grant &grant);
    Entry readDefaults(const Grant &grant) const;

    UserDefaults &defaults_;
    Prompt prompt_;
    std::function<bool()> canPostKeys_;
    AccessibilitySwitch accessibility_;
    PermissionStore store_;
    Grant microphone_;
    Grant speech_;
};

} // namespace lorvane
