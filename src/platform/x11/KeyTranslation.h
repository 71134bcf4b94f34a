#pragma once

#include "desktop/KeyboardEvents.h"

#include <array>
#include <bitset>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

namespace querlin {

/// Makes the port's events of the X server's key codes, which name places on the keyboard. Knows which keys
/// are down, so that a modifier's event tells what is held behind it, and a modifier is never said to be down
/// twice.
class KeyTranslation {
public:
    /// Bit n of the server's 32 bytes is the key with the code n.
    using Keymap = std::array<std::uint8_t, 32>;

    static std::int64_t virtualKey(std::uint8_t keyCode);
    /// For developers: "rightOption".
    static std::string_view name(std::int64_t virtualKey);

    /// Begins with the keys that are down. Of those that were down before and no longer are, and whose
    /// release nobody has seen, the releases.
    std::vector<KeyEvent> begin(const Keymap& held);
    /// Nothing for a modifier that is as it was.
    std::optional<KeyEvent> translate(std::uint8_t keyCode, bool isDown);

private:
    std::uint64_t flags() const;

    std::bitset<256> down_;
};

} // namespace querlin
