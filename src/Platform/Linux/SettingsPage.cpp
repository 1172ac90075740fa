#include "Platform/Linux/SettingsPage.h"

#include <array>

namespace lorvane {

namespace {

struct Page {
    const char *address;
    const char *gnome;
    const char *plasma;
};

// Who may recognise speech is asked nowhere: that page is the one of who may listen.
constexpr std::array pages = {
    Page{"Privacy_Microphone", "microphone", "kcm_app-permissions"},
    Page{"Privacy_SpeechRecognition", "microphone", "kcm_app-permissions"},
    Page{"Privacy_Accessibility", "universal-access", "kcm_access"},
};

} // namespace

QStringList settingsPageCommand(const QString &address, const QString &desktop) {
    const QStringList desktops = desktop.split(u':');
    for (const Page &page : pages) {
        if (address != QStringLiteral("x-apple.systempreferences:com.apple.preference.security?") +
                           QLatin1String(page.address))
            continue;
        if (desktops.contains(QStringLiteral("GNOME")))
            return {QStringLiteral("gnome-control-center"), QString::fromLatin1(page.gnome)};
        if (desktops.contains(QStringLiteral("KDE")))
            return {QStringLiteral("systemsettings"), QString::fromLatin1(page.plasma)};
    }
    return {};
}

} // namespace lorvane
