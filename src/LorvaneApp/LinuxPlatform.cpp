#include "LorvaneApp/LinuxPlatform.h"

#include <QDBusConnection>

namespace lorvane {

LinuxPlatform::LinuxPlatform(QQmlEngine &engine)
    : prompt_(engine, clock_),
      audioInput_(clock_),
      speech_(audioFile_, OnDeviceSpeech::installedModelsFolder()),
      permissions_(
          QDBusConnection::sessionBus(), userDefaults_,
          [this](const QString &question) { return prompt_.ask(question); },
          [this] { return keyboard_.isAvailable(); }),
      savePanel_(QDBusConnection::sessionBus(), ownSavePanel_),
      overlay_(engine) {}

Ports LinuxPlatform::ports() {
    return {clock_,   audioInput_, audioFile_,     speech_,   permissions_,
            hotKey_,  workspace_,  accessibility_, keyboard_, pasteboard_,
            screens_, overlay_,    userDefaults_,  savePanel_};
}

} // namespace lorvane
