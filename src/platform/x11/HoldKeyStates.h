#pragma once

#include "desktop/HoldKey.h"

#include <array>
#include <bitset>
#include <cstdint>
#include <optional>
#include <span>

namespace querlin {

/// Makes presses and releases of one hold key out of the server's raw keys, which are places on the keyboard
/// and not letters. A modifier is held from its own press to its own release, whatever else goes on. A
/// combination is held from the press of its main key, with its modifiers down, to that key's release; the
/// modifiers may be let go first.
class HoldKeyStates {
public:
    using KeyCode = std::uint8_t;
    /// Bit n of the server's 32 bytes is the key with the code n.
    using Keymap = std::array<std::uint8_t, 32>;

    explicit HoldKeyStates(const HotkeyConfig& wanted);

    /// Begins with the keys that are down. A hold key among them is none until it is pressed anew.
    void begin(const Keymap& held);
    /// What it means that this key went down or up.
    std::optional<HoldKeyEvent::Kind> take(KeyCode key, bool isDown);

    /// The key whose press and release count.
    static KeyCode mainKey(const HotkeyConfig& wanted);

private:
    bool areModifiersDown() const;

    KeyCode main_;
    /// One key of each pair must be down.
    std::span<const std::array<KeyCode, 2>> modifiers_;
    std::bitset<256> down_;
    bool isHeld_ = false;
};

} // namespace querlin
