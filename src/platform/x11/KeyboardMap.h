#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace querlin {

/// What the keys mean at present, in the server's core form: rows of keysyms, one row for each key from the
/// first key code on. Columns 0 and 2 are the first and the second layout without a modifier.
struct KeyboardMap {
    std::uint8_t firstKeyCode = 8;
    std::size_t columns = 0;
    std::vector<std::uint32_t> keysyms;
    /// Eight rows of as many key codes, 0 for none: Shift, Lock, Control, and five that the layout chooses.
    std::vector<std::uint8_t> modifiers;
    /// The layout that is in use, from 0 on.
    std::size_t layout = 0;

    std::uint32_t keysym(std::uint8_t keyCode, std::size_t column) const;
    /// The key that gives a character without a modifier, in the present layout if it does there; programs
    /// take shortcuts by the letter.
    std::optional<std::uint8_t> keyFor(std::uint32_t keysym) const;
    /// Keys that make another shortcut of what is pressed beside them. Those that lock don't.
    std::vector<std::uint8_t> heldModifiers() const;
};

namespace Keysym {
constexpr std::uint32_t v = 0x76;
constexpr std::uint32_t insert = 0xFF63;
constexpr std::uint32_t leftShift = 0xFFE1;
constexpr std::uint32_t leftControl = 0xFFE3;
} // namespace Keysym

/// Keys to be held and the one to be pressed while they are.
struct KeyChord {
    std::vector<std::uint8_t> held;
    std::uint8_t key = 0;

    bool operator==(const KeyChord&) const = default;
};

enum class PasteShortcut : std::uint8_t;
/// What pastes on this keyboard: Ctrl+V (Ctrl+Shift+V in terminals), or Shift+Insert where no key gives a
/// "v".
std::optional<KeyChord> pasteChord(const KeyboardMap& map, PasteShortcut shortcut);

} // namespace querlin
