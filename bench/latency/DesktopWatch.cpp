// Tells on standard output what happens on a desktop, and when (seconds of the monotonic clock):
//     mapped TIME TITLE    a window came onto the screen
//     painted TIME TITLE   it showed its first whole picture since
//     recorded TIME        a file below FOLDER had a first piece of audio in it
//     pressed TIME         the shortcut was pressed, which "press" on standard input asks for
//     released TIME        it was let go, as "release" asks
// It measures the program from outside: nothing in it knows of the watch.

#include <xcb/damage.h>
#include <xcb/xcb.h>
#include <xcb/xtest.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <iostream>
#include <map>
#include <memory>
#include <poll.h>
#include <set>
#include <string>
#include <sys/inotify.h>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;

/// More than the header of a recording, less than its first buffer.
constexpr std::uintmax_t headerSize = 6000;

template <class T>
using Reply = std::unique_ptr<T, decltype(&std::free)>;
template <class T>
Reply<T> owned(T *reply) {
    return {reply, &std::free};
}

void tell(const char *what, const std::string &about = {}) {
    timespec time{};
    clock_gettime(CLOCK_MONOTONIC, &time);
    std::printf("%s %ld.%09ld %s\n", what, long(time.tv_sec), time.tv_nsec, about.c_str());
    std::fflush(stdout);
}

class Windows {
public:
    Windows() : connection_(xcb_connect(nullptr, nullptr)) {
        if (xcb_connection_has_error(connection_)) {
            std::fprintf(stderr, "there is no display\n");
            std::exit(1);
        }
        root_ = xcb_setup_roots_iterator(xcb_get_setup(connection_)).data->root;
        const std::uint32_t events = XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY;
        xcb_change_window_attributes(connection_, root_, XCB_CW_EVENT_MASK, &events);
        owned(xcb_damage_query_version_reply(connection_,
                                             xcb_damage_query_version(connection_, 1, 1), nullptr));
        damageEvent_ =
            xcb_get_extension_data(connection_, &xcb_damage_id)->first_event + XCB_DAMAGE_NOTIFY;
        xcb_flush(connection_);
    }

    int descriptor() const { return xcb_get_file_descriptor(connection_); }

    /// Call it last before waiting for the descriptor: writing may read events too, and nothing
    /// wakes for what is read already.
    void handleEvents() {
        xcb_flush(connection_);
        while (const auto event = owned(xcb_poll_for_event(connection_))) {
            const int type = event->response_type & 0x7F;
            if (type == XCB_CREATE_NOTIFY)
                follow(reinterpret_cast<xcb_create_notify_event_t &>(*event));
            else if (type == XCB_MAP_NOTIFY)
                mapped(reinterpret_cast<xcb_map_notify_event_t &>(*event).window);
            else if (type == XCB_UNMAP_NOTIFY)
                unmapped(reinterpret_cast<xcb_unmap_notify_event_t &>(*event).window);
            else if (type == damageEvent_)
                painted(reinterpret_cast<xcb_damage_notify_event_t &>(*event));
            xcb_flush(connection_);
        }
    }

    /// Control, Alt and Space, by the codes that they have on every keyboard of a PC.
    void pressShortcut(bool isDown) {
        constexpr std::uint8_t pressed = XCB_KEY_PRESS;
        constexpr std::uint8_t released = XCB_KEY_RELEASE;
        constexpr std::uint8_t keys[]{37, 64, 65};
        for (const std::uint8_t key : keys)
            xcb_test_fake_input(connection_, isDown ? pressed : released, key, 0, root_, 0, 0, 0);
        xcb_flush(connection_);
    }

private:
    void follow(const xcb_create_notify_event_t &event) {
        if (event.parent != root_)
            return;
        const std::uint32_t events = XCB_EVENT_MASK_STRUCTURE_NOTIFY;
        xcb_change_window_attributes(connection_, event.window, XCB_CW_EVENT_MASK, &events);
        const xcb_damage_damage_t damage = xcb_generate_id(connection_);
        xcb_damage_create(connection_, damage, event.window, XCB_DAMAGE_REPORT_LEVEL_BOUNDING_BOX);
        damages_[event.window] = damage;
        // A window manager may have been quicker, and a window that it has framed is the root's no
        // more.
        const auto attributes = owned(xcb_get_window_attributes_reply(
            connection_, xcb_get_window_attributes(connection_, event.window), nullptr));
        if (attributes && attributes->map_state != XCB_MAP_STATE_UNMAPPED)
            mapped(event.window);
    }

    void mapped(xcb_window_t window) {
        // A window is told of by itself and by its parent.
        if (damages_.contains(window) && unpainted_.insert(window).second)
            tell("mapped", titleOf(window));
    }

    /// The next picture counts again from its beginning.
    void unmapped(xcb_window_t window) {
        unpainted_.erase(window);
        if (const auto damage = damages_.find(window); damage != damages_.end())
            xcb_damage_subtract(connection_, damage->second, XCB_NONE, XCB_NONE);
    }

    void painted(const xcb_damage_notify_event_t &event) {
        const bool isWhole = 10U * event.area.width * event.area.height >=
                             9U * event.geometry.width * event.geometry.height;
        if (isWhole && unpainted_.erase(event.drawable))
            tell("painted", titleOf(event.drawable));
    }

    std::string titleOf(xcb_window_t window) {
        const auto reply =
            owned(xcb_get_property_reply(connection_,
                                         xcb_get_property(connection_, 0, window, XCB_ATOM_WM_NAME,
                                                          XCB_GET_PROPERTY_TYPE_ANY, 0, 64),
                                         nullptr));
        if (!reply)
            return {};
        return {static_cast<const char *>(xcb_get_property_value(reply.get())),
                std::size_t(xcb_get_property_value_length(reply.get()))};
    }

    xcb_connection_t *connection_;
    xcb_window_t root_ = 0;
    int damageEvent_ = 0;
    std::map<xcb_window_t, xcb_damage_damage_t> damages_;
    std::set<xcb_window_t> unpainted_;
};

/// The folders of recordings below one folder.
class Recordings {
public:
    explicit Recordings(const fs::path &folder) : folder_(folder) {
        fs::create_directories(folder);
        inotify_add_watch(descriptor_, folder.c_str(), IN_CREATE);
    }

    int descriptor() const { return descriptor_; }

    void handleEvents() {
        alignas(inotify_event) char buffer[16384];
        const ssize_t size = read(descriptor_, buffer, sizeof buffer);
        for (ssize_t place = 0; place < size;) {
            const auto &event = *reinterpret_cast<const inotify_event *>(buffer + place);
            if (event.mask & IN_CREATE && event.mask & IN_ISDIR) {
                file_ = folder_ / event.name / "recording.caf";
                inotify_add_watch(descriptor_, file_.parent_path().c_str(), IN_MODIFY);
            }
            place += ssize_t(sizeof event) + event.len;
        }
        std::error_code error;
        if (!file_.empty() && fs::file_size(file_, error) > headerSize && !error) {
            tell("recorded");
            file_.clear();
        }
    }

private:
    fs::path folder_;
    fs::path file_; ///< that has no audio yet
    int descriptor_ = inotify_init1(IN_CLOEXEC | IN_NONBLOCK);
};

} // namespace

int main(int argc, char **argv) {
    if (argc != 2) {
        std::fprintf(stderr, "usage: desktop-watch FOLDER\n");
        return 1;
    }
    Windows windows;
    Recordings recordings(argv[1]);
    tell("ready");
    pollfd waits[]{{windows.descriptor(), POLLIN, 0},
                   {recordings.descriptor(), POLLIN, 0},
                   {STDIN_FILENO, POLLIN, 0}};
    windows.handleEvents();
    while (poll(waits, 3, -1) > 0) {
        if (waits[1].revents)
            recordings.handleEvents();
        if (waits[2].revents) {
            std::string command;
            if (!std::getline(std::cin, command))
                break;
            const bool isDown = command == "press";
            tell(isDown ? "pressed" : "released");
            windows.pressShortcut(isDown);
        }
        windows.handleEvents();
    }
    return 0;
}
