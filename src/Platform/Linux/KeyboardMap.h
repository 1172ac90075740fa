#pragma once

#include "Platform/Linux/X11Connection.h"
#include "Platform/Linux/Xkb.h"

#include <initializer_list>
#include <optional>
#include <vector>

namespace lorvane {

/// Symbols of X11/keysymdef.h that the program looks for.
namespace KeySymbol {
inline constexpr xcb_keysym_t space = 0x0020;
inline constexpr xcb_keysym_t v = 0x0076;
inline constexpr xcb_keysym_t scrollLock = 0xff14;
inline constexpr xcb_keysym_t insert = 0xff63;
inline constexpr xcb_keysym_t numLock = 0xff7f;
inline constexpr xcb_keysym_t shiftLeft = 0xffe1;
inline constexpr xcb_keysym_t controlLeft = 0xffe3;
inline constexpr xcb_keysym_t capsLock = 0xffe5;
inline constexpr xcb_keysym_t altLeft = 0xffe9;
inline constexpr xcb_keysym_t altRight = 0xffea;
} // namespace KeySymbol

/// The keyboard's map at one moment: which keys give which symbols, and which are modifiers.
class KeyboardMap {
public:
    /// A question that is on its way to the server.
    struct Question {
        xcb_xkb_get_state_cookie_t state;
        xcb_xkb_get_map_cookie_t map;
        xcb_get_modifier_mapping_cookie_t modifiers;
    };

    /// Asks the server; none if it doesn't answer in time or doesn't speak XKB.
    static std::optional<KeyboardMap> read(X11Connection &connection,
                                           const QDeadlineTimer &deadline);
    /// The same in two steps, on a connection that speaks XKB. Each question wants its answer.
    static Question ask(X11Connection &connection);
    static std::optional<KeyboardMap> answer(X11Connection &connection, const Question &question,
                                             const QDeadlineTimer &deadline);

    /// The keys that give the symbol by themselves: those of the present layout if it has any, or
    /// else those of the other layouts.
    std::vector<xcb_keycode_t> keys(xcb_keysym_t symbol) const;
    /// The bits that the keys with these symbols set in an event's state, 0 if none.
    uint16_t modifiers(std::initializer_list<xcb_keysym_t> symbols) const;
    /// All keys that act while they are held down: Control, Alt, Shift and so on, without the
    /// locks.
    std::vector<xcb_keycode_t> heldModifierKeys() const;

private:
    bool has(xcb_keycode_t key, xcb_keysym_t symbol) const;

    struct Key {
        std::vector<xcb_keysym_t> groups; ///< the symbol of each layout, without a modifier
        uint16_t modifiers = 0;
    };
    std::vector<Key> keys_; ///< by key code
    unsigned int group_ = 0;
};

/// Tells the server that the connection speaks XKB, which every request of it needs first; gives
/// the number of its events, 0 if the server doesn't know it.
uint8_t useXkb(X11Connection &connection, const QDeadlineTimer &deadline);

} // namespace lorvane
