#pragma once

#include "Fakes/FakeAccessibility.h"
#include "Fakes/FakeAudioFile.h"
#include "Fakes/FakeAudioInput.h"
#include "Fakes/FakeClock.h"
#include "Fakes/FakeHotKey.h"
#include "Fakes/FakeKeyboard.h"
#include "Fakes/FakeOverlayPanel.h"
#include "Fakes/FakePasteboard.h"
#include "Fakes/FakePermissions.h"
#include "Fakes/FakeSavePanel.h"
#include "Fakes/FakeScreens.h"
#include "Fakes/FakeSpeech.h"
#include "Fakes/FakeUserDefaults.h"
#include "Fakes/FakeWorkspace.h"
#include "Platform/Ports.h"

#include <QDir>
#include <QTemporaryDir>

namespace lorvane {

/// A whole platform of fakes, with a folder for the user's data that goes with it. `log` has the
/// calls on the workspace, the pasteboard, the keyboard and accessibility in order.
struct FakePorts {
    FakePorts() { qputenv("XDG_DATA_HOME", dataHome.path().toUtf8()); }

    QTemporaryDir dataHome;
    QStringList log;
    FakeClock clock;
    FakeAudioInput audioInput{clock};
    FakeAudioFile audioFile;
    FakeSpeech speech;
    FakePermissions permissions{clock};
    FakeHotKey hotKey;
    FakeWorkspace workspace{&log};
    FakeAccessibility accessibility{&log};
    FakeKeyboard keyboard{&log};
    FakePasteboard pasteboard{&log};
    FakeScreens screens;
    FakeOverlayPanel overlayPanel;
    FakeUserDefaults userDefaults;
    FakeSavePanel savePanel;

    QString libraryPath() const {
        return dataHome.filePath(QStringLiteral("Lorvane/library.json"));
    }

    /// The folders of all recordings that are on the disk.
    QStringList recordingFolders() const {
        const QDir recovery(dataHome.filePath(QStringLiteral("Lorvane/Recovery")));
        QStringList folders;
        for (const QString &name : recovery.entryList(QDir::Dirs | QDir::NoDotAndDotDot))
            folders.append(recovery.filePath(name));
        return folders;
    }

    operator Ports() { // NOLINT(google-explicit-constructor): it stands for them everywhere
        return {clock,   audioInput,   audioFile,     speech,   permissions,
                hotKey,  workspace,    accessibility, keyboard, pasteboard,
                screens, overlayPanel, userDefaults,  savePanel};
    }
};

} // namespace lorvane
