#include "platform/x11/HoldKeyStates.h"

#include <algorithm>

namespace querlin {

namespace {

using KeyCode = HoldKeyStates::KeyCode;
using Pair = std::array<KeyCode, 2>;

// Key codes of the X server: those of the kernel and 8.
constexpr KeyCode letterD = 40;
constexpr KeyCode space = 65;
constexpr std::array<Pair, 1> alt = {{{64, 108}}};
constexpr std::array<Pair, 1> control = {{{37, 105}}};
constexpr std::array<Pair, 2> superAndShift = {{{133, 134}, {50, 62}}};

constexpr KeyCode codeOf(ModifierKey key) {
    switch (key) {
    case ModifierKey::altGr:
        return 108;
    case ModifierKey::rightSuper:
        return 134;
    case ModifierKey::rightControl:
        return 105;
    case ModifierKey::rightShift:
        return 62;
    case ModifierKey::fn:
        return 151; // Of the few keyboards whose Fn key reaches the system.
    case ModifierKey::leftAlt:
        return 64;
    }
    return 0;
}

constexpr std::span<const Pair> modifiersOf(const HotkeyConfig& wanted) {
    if (wanted.mode == HotkeyConfig::Mode::holdModifier) return {};
    switch (wanted.combo) {
    case ComboHotkey::altSpace:
        return alt;
    case ComboHotkey::controlSpace:
        return control;
    case ComboHotkey::superShiftD:
        return superAndShift;
    }
    return {};
}

bool isSet(const HoldKeyStates::Keymap& map, std::size_t key) {
    return ((std::uint32_t{map.at(key / 8)} >> (key % 8)) & 1U) != 0;
}

} // namespace

KeyCode HoldKeyStates::mainKey(const HotkeyConfig& wanted) {
    if (wanted.mode == HotkeyConfig::Mode::holdModifier) return codeOf(wanted.modifier);
    return wanted.combo == ComboHotkey::superShiftD ? letterD : space;
}

HoldKeyStates::HoldKeyStates(const HotkeyConfig& wanted) :
    main_(mainKey(wanted)), modifiers_(modifiersOf(wanted)) {}

void HoldKeyStates::begin(const Keymap& held) {
    isHeld_ = false;
    for (std::size_t key = 0; key < down_.size(); ++key) down_[key] = isSet(held, key);
}

std::optional<HoldKeyEvent::Kind> HoldKeyStates::take(KeyCode key, bool isDown) {
    if (down_[key] == isDown) return std::nullopt; // A key that repeats itself.
    down_[key] = isDown;
    if (key != main_)
        return isHeld_ && isDown ? std::optional(HoldKeyEvent::Kind::otherKeyPressed) : std::nullopt;
    if (isDown) {
        isHeld_ = areModifiersDown();
        return isHeld_ ? std::optional(HoldKeyEvent::Kind::pressed) : std::nullopt;
    }
    return std::exchange(isHeld_, false) ? std::optional(HoldKeyEvent::Kind::released) : std::nullopt;
}

bool HoldKeyStates::areModifiersDown() const {
    return std::ranges::all_of(modifiers_,
                               [this](const Pair& pair) { return down_[pair[0]] || down_[pair[1]]; });
}

} // namespace querlin
