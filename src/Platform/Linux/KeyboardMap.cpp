#include "Platform/Linux/KeyboardMap.h"

#include "Platform/Linux/Xkb.h"

#include <algorithm>

namespace lorvane {

uint8_t useXkb(X11Connection &connection, const QDeadlineTimer &deadline) {
    if (connection.error() != 0)
        return 0;
    const auto *const extension = xcb_get_extension_data(connection.get(), &xcb_xkb_id);
    if (!extension || !extension->present)
        return 0;
    const auto answer = connection.reply<xcb_xkb_use_extension_reply_t>(
        xcb_xkb_use_extension(connection.get(), XCB_XKB_MAJOR_VERSION, XCB_XKB_MINOR_VERSION),
        deadline);
    return answer && answer->supported ? extension->first_event : uint8_t(0);
}

std::optional<KeyboardMap> KeyboardMap::read(X11Connection &connection,
                                             const QDeadlineTimer &deadline) {
    if (useXkb(connection, deadline) == 0)
        return std::nullopt;
    return answer(connection, ask(connection), deadline);
}

KeyboardMap::Question KeyboardMap::ask(X11Connection &connection) {
    xcb_connection_t *const c = connection.get();
    return {xcb_xkb_get_state(c, XCB_XKB_ID_USE_CORE_KBD),
            xcb_xkb_get_map(c, XCB_XKB_ID_USE_CORE_KBD, XCB_XKB_MAP_PART_KEY_SYMS, 0, 0, 0, 0, 0, 0,
                            0, 0, 0, 0, 0, 0, 0, 0, 0, 0),
            xcb_get_modifier_mapping(c)};
}

std::optional<KeyboardMap> KeyboardMap::answer(X11Connection &connection, const Question &question,
                                               const QDeadlineTimer &deadline) {
    const auto state = connection.reply<xcb_xkb_get_state_reply_t>(question.state, deadline);
    const auto map = connection.reply<xcb_xkb_get_map_reply_t>(question.map, deadline);
    const auto modifiers =
        connection.reply<xcb_get_modifier_mapping_reply_t>(question.modifiers, deadline);
    if (!state || !map || !modifiers)
        return std::nullopt;

    KeyboardMap result;
    result.group_ = state->group;
    result.keys_.resize(256);

    xcb_xkb_get_map_map_t parts = {};
    xcb_xkb_get_map_map_unpack(xcb_xkb_get_map_map(map.get()), map->nTypes, map->nKeySyms,
                               map->nKeyActions, map->totalActions, map->totalKeyBehaviors,
                               map->virtualMods, map->totalKeyExplicit, map->totalModMapKeys,
                               map->totalVModMapKeys, map->present, &parts);
    auto entry = xcb_xkb_get_map_map_syms_rtrn_iterator(map.get(), &parts);
    for (unsigned int code = map->firstKeySym; entry.rem > 0 && code < 256; ++code) {
        const xcb_keysym_t *const symbols = xcb_xkb_key_sym_map_syms(entry.data);
        const std::size_t groupCount = entry.data->groupInfo & 0x0f;
        for (std::size_t group = 0; group < groupCount; ++group)
            result.keys_[code].groups.push_back(symbols[group * entry.data->width]);
        xcb_xkb_key_sym_map_next(&entry);
    }

    const xcb_keycode_t *const rows = xcb_get_modifier_mapping_keycodes(modifiers.get());
    const unsigned int width = modifiers->keycodes_per_modifier;
    for (unsigned int i = 0; i < 8 * width; ++i) {
        if (rows[i] != 0)
            result.keys_[rows[i]].modifiers |= static_cast<uint16_t>(1u << (i / width));
    }
    return result;
}

bool KeyboardMap::has(xcb_keycode_t key, xcb_keysym_t symbol) const {
    const auto &groups = keys_[key].groups;
    return std::find(groups.begin(), groups.end(), symbol) != groups.end();
}

std::vector<xcb_keycode_t> KeyboardMap::keys(xcb_keysym_t symbol) const {
    std::vector<xcb_keycode_t> present;
    std::vector<xcb_keycode_t> other;
    for (unsigned int code = 0; code < keys_.size(); ++code) {
        const auto &groups = keys_[code].groups;
        const auto key = static_cast<xcb_keycode_t>(code);
        // A key with fewer layouts than the keyboard uses them in turn.
        if (!groups.empty() && groups[group_ % groups.size()] == symbol)
            present.push_back(key);
        else if (has(key, symbol))
            other.push_back(key);
    }
    return present.empty() ? other : present;
}

uint16_t KeyboardMap::modifiers(std::initializer_list<xcb_keysym_t> symbols) const {
    uint16_t result = 0;
    for (unsigned int code = 0; code < keys_.size(); ++code) {
        for (const xcb_keysym_t symbol : symbols) {
            if (has(static_cast<xcb_keycode_t>(code), symbol))
                result |= keys_[code].modifiers;
        }
    }
    return result;
}

std::vector<xcb_keycode_t> KeyboardMap::heldModifierKeys() const {
    std::vector<xcb_keycode_t> result;
    for (unsigned int code = 0; code < keys_.size(); ++code) {
        const auto key = static_cast<xcb_keycode_t>(code);
        const bool isLock = has(key, KeySymbol::capsLock) || has(key, KeySymbol::numLock) ||
                            has(key, KeySymbol::scrollLock);
        if (keys_[code].modifiers != 0 && !isLock)
            result.push_back(key);
    }
    return result;
}

} // namespace lorvane
