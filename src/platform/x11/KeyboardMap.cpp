#include "platform/x11/KeyboardMap.h"

#include "desktop/PasteKey.h"

#include <algorithm>
#include <array>
#include <set>

namespace querlin {

namespace {

constexpr std::size_t lockRow = 1;

/// Caps_Lock, Shift_Lock, Num_Lock, Scroll_Lock and the locks of layouts and levels.
constexpr std::array<std::uint32_t, 9> locks = {0xFFE5, 0xFFE6, 0xFF7F, 0xFF14, 0xFE01,
                                                0xFE05, 0xFE07, 0xFE0D, 0xFE13};

/// Shift to Hyper, and the shifts of levels and layouts. AltGr is one that no row may name: it acts on its
/// own.
bool isModifier(std::uint32_t keysym) {
    constexpr std::array<std::uint32_t, 3> shifts = {0xFE03, 0xFE11, 0xFF7E};
    return (keysym >= 0xFFE1 && keysym <= 0xFFEE) || std::ranges::find(shifts, keysym) != shifts.end();
}

bool isLock(std::uint32_t keysym) { return std::ranges::find(locks, keysym) != locks.end(); }

} // namespace

std::uint32_t KeyboardMap::keysym(std::uint8_t keyCode, std::size_t column) const {
    if (keyCode < firstKeyCode || column >= columns) return 0;
    const auto place = (static_cast<std::size_t>(keyCode - firstKeyCode) * columns) + column;
    return place < keysyms.size() ? keysyms[place] : 0;
}

std::optional<std::uint8_t> KeyboardMap::keyFor(std::uint32_t keysym) const {
    if (columns == 0) return std::nullopt;
    const std::array<std::size_t, 3> preferred = {2 * layout, 0, 2};
    for (const auto column : preferred) {
        for (std::size_t place = column; column < columns && place < keysyms.size(); place += columns) {
            if (keysyms[place] == keysym) return static_cast<std::uint8_t>(firstKeyCode + (place / columns));
        }
    }
    return std::nullopt;
}

std::vector<std::uint8_t> KeyboardMap::heldModifiers() const {
    std::set<std::uint8_t> found;
    const auto perRow = modifiers.size() / 8;
    for (std::size_t place = 0; place < modifiers.size(); ++place) {
        if (modifiers[place] != 0 && place / perRow != lockRow) found.insert(modifiers[place]);
    }
    for (std::size_t place = 0; columns > 0 && place < keysyms.size(); place += columns) {
        if (isModifier(keysyms[place]))
            found.insert(static_cast<std::uint8_t>(firstKeyCode + (place / columns)));
    }
    std::erase_if(found, [this](std::uint8_t keyCode) { return isLock(keysym(keyCode, 0)); });
    return {found.begin(), found.end()};
}

std::optional<KeyChord> pasteChord(const KeyboardMap& map, PasteShortcut shortcut) {
    const auto control = map.keyFor(Keysym::leftControl);
    const auto shift = map.keyFor(Keysym::leftShift);
    const auto v = map.keyFor(Keysym::v);
    const auto insert = map.keyFor(Keysym::insert);
    if (v && control && shortcut == PasteShortcut::standard) return KeyChord{{*control}, *v};
    if (v && control && shift) return KeyChord{{*control, *shift}, *v};
    if (insert && shift) return KeyChord{{*shift}, *insert};
    return std::nullopt;
}

} // namespace querlin
