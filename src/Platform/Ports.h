#pragma once

namespace lorvane {

class Accessibility;
class AudioFile;
class AudioInput;
class Clock;
class HotKey;
class Keyboard;
class OverlayPanel;
class Pasteboard;
class Permissions;
class SavePanel;
class Screens;
class Speech;
class UserDefaults;
class Workspace;

/// Everything that belongs to the operating system. All of it outlives what uses it.
struct Ports {
    Clock &clock;
    AudioInput &audioInput;
    AudioFile &audioFile;
    Speech &speech;
    Permissions &permissions;
    HotKey &hotKey;
    Workspace &workspace;
    Accessibility &accessibility;
    Keyboard &keyboard;
    Pasteboard &pasteboard;
    Screens &screens;
    OverlayPanel &overlayPanel;
    UserDefaults &userDefaults;
    SavePanel &savePanel;
};

} // namespace lorvane
