// Qt's own locks are invisible to the thread sanitizer, so what Qt does inside is no news. Whatever
// this program shares between threads goes through locks of the standard library.
extern "C" const char *__tsan_default_suppressions() {
    return "called_from_lib:libQt6Core.so\n"
           "called_from_lib:libQt6DBus.so\n"
           "race:libQt6Gui.so\n"
           "race:libQt6Qml.so\n"
           "race:libQt6QuickTemplates2.so\n"
           "race:QQmlPrivate::CachedQmlUnit\n"
           "called_from_lib:libglib-2.0.so\n"
           "race:QEvent::type\n"
           "race:lorvane::SystemClock::~SystemClock\n"; // waits for its threads through Qt
}
