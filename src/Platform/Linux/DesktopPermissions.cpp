#include "Platform/Linux/DesktopPermissions.h"

namespace lorvane {
namespace {

constexpr int notDetermined = 0;
constexpr int authorized = 3;

QString answeredKey(const QString &id) { return QStringLiteral("Lorvane.%1.answered").arg(id); }
QString allowedKey(const QString &id) { return QStringLiteral("Lorvane.%1.allowed").arg(id); }

} // namespace

DesktopPermissions::DesktopPermissions(QDBusConnection sessionBus, UserDefaults &defaults,
                                       Prompt prompt, std::function<bool()> canPostKeys)
    : defaults_(defaults),
      prompt_(std::move(prompt)),
      canPostKeys_(std::move(canPostKeys)),
      accessibility_(sessionBus),
      store_(std::move(sessionBus)),
      microphone_{QStringLiteral("devices"), QStringLiteral("microphone"),
                  QStringLiteral("“Lorvane” would like to access the microphone.")},
      speech_{QStringLiteral("lorvane"), QStringLiteral("speech-recognition"),
              QStringLiteral("“Lorvane” would like to access speech recognition.")} {
    store_.follow(microphone_.table, microphone_.id);
    store_.follow(speech_.table, speech_.id);
}

int DesktopPermissions::microphoneStatus() {
    switch (read(microphone_)) {
    case Entry::yes: return authorized;
    case Entry::no: return 2;
    case Entry::forbidden: return 1;
    default: return notDetermined;
    }
}

int DesktopPermissions::speechStatus() {
    switch (read(speech_)) {
    case Entry::yes: return authorized;
    case Entry::no: return 1;
    case Entry::forbidden: return 2;
    default: return notDetermined;
    }
}

Async<bool> DesktopPermissions::requestMicrophone() {
    if (microphoneStatus() == notDetermined)
        co_await request(microphone_);
    co_return microphoneStatus() == authorized;
}

Async<int> DesktopPermissions::requestSpeech() {
    if (speechStatus() == notDetermined)
        co_await request(speech_);
    co_return speechStatus();
}

bool DesktopPermissions::accessibilityTrusted() { return accessibility_.isOn() && canPostKeys_(); }

void DesktopPermissions::requestAccessibility() { accessibility_.turnOn(); }

DesktopPermissions::Entry DesktopPermissions::read(Grant &grant) {
    Entry entry = store_.read(grant.table, grant.id);
    if (entry == Entry::unreachable)
        return grant.last.value_or(readDefaults(grant));
    if (entry == Entry::missing && grant.isWriteForbidden)
        entry = Entry::forbidden;
    grant.last = entry == Entry::missing ? std::nullopt : std::optional(entry);
    return entry;
}

Async<> DesktopPermissions::write(Grant &grant, bool isAllowed) {
    const Entry entry = co_await store_.write(grant.table, grant.id, isAllowed);
    grant.isWriteForbidden = entry == Entry::forbidden;
    if (entry == Entry::unreachable) {
        defaults_.setBoolean(allowedKey(grant.id), isAllowed);
        defaults_.setBoolean(answeredKey(grant.id), true);
    }
}

/// Shows the prompt, or waits for the one that stands already, and stores the answer.
Async<> DesktopPermissions::request(Grant &grant) {
    if (!grant.prompt || grant.prompt.isDone())
        grant.prompt = Task<bool>::run(prompt_(grant.question));
    const Task<bool> prompt = grant.prompt;
    const bool isAllowed = co_await prompt;
    if (read(grant) == Entry::missing)
        co_await write(grant, isAllowed);
}

DesktopPermissions::Entry DesktopPermissions::readDefaults(const Grant &grant) const {
    if (!defaults_.boolean(answeredKey(grant.id)))
        return Entry::missing;
    return defaults_.boolean(allowedKey(grant.id)) ? Entry::yes : Entry::no;
}

} // namespace lorvane
