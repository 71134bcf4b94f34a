#include "platform/x11/KeyTranslation.h"

#include <algorithm>

namespace querlin {

namespace {

struct Key {
    std::uint8_t keyCode; ///< of X: that of the kernel and 8
    std::int64_t virtualKey;
    std::string_view name;
    std::uint64_t flags = 0; ///< generic and device bit of a modifier
};

constexpr std::array<Key, 11> keys = {{
    {37, VirtualKey::leftControl, "leftControl", KeyFlag::control | KeyFlag::leftControlDevice},
    {40, VirtualKey::d, "d"},
    {50, VirtualKey::leftShift, "leftShift", KeyFlag::shift | KeyFlag::leftShiftDevice},
    {62, VirtualKey::rightShift, "rightShift", KeyFlag::shift | KeyFlag::rightShiftDevice},
    {64, VirtualKey::leftOption, "leftOption", KeyFlag::alternate | KeyFlag::leftOptionDevice},
    {65, VirtualKey::space, "space"},
    {105, VirtualKey::rightControl, "rightControl", KeyFlag::control | KeyFlag::rightControlDevice},
    {108, VirtualKey::rightOption, "rightOption", KeyFlag::alternate | KeyFlag::rightOptionDevice},
    {133, VirtualKey::leftCommand, "leftCommand", KeyFlag::command | KeyFlag::leftCommandDevice},
    {134, VirtualKey::rightCommand, "rightCommand", KeyFlag::command | KeyFlag::rightCommandDevice},
    {151, VirtualKey::fn, "fn", KeyFlag::fnDevice}, // of laptops whose Fn reaches the system at all
}};

constexpr const Key* find(std::uint8_t keyCode) {
    const auto* const found = std::ranges::find(keys, keyCode, &Key::keyCode);
    return found == keys.end() ? nullptr : found;
}

bool isSet(const KeyTranslation::Keymap& map, std::size_t keyCode) {
    return ((std::uint32_t{map.at(keyCode / 8)} >> (keyCode % 8)) & 1U) != 0;
}

} // namespace

std::int64_t KeyTranslation::virtualKey(std::uint8_t keyCode) {
    const auto* const key = find(keyCode);
    return key ? key->virtualKey : VirtualKey::other;
}

std::string_view KeyTranslation::name(std::int64_t virtualKey) {
    const auto* const found = std::ranges::find(keys, virtualKey, &Key::virtualKey);
    return found == keys.end() ? "other" : found->name;
}

std::uint64_t KeyTranslation::flags() const {
    std::uint64_t flags = 0;
    for (const auto& key : keys) {
        if (down_[key.keyCode]) flags |= key.flags;
    }
    return flags;
}

std::vector<KeyEvent> KeyTranslation::begin(const Keymap& held) {
    std::vector<KeyEvent> releases;
    for (std::size_t keyCode = 0; keyCode < down_.size(); ++keyCode) {
        if (!down_[keyCode] || isSet(held, keyCode)) continue;
        if (const auto event = translate(static_cast<std::uint8_t>(keyCode), false))
            releases.push_back(*event);
    }
    for (std::size_t keyCode = 0; keyCode < down_.size(); ++keyCode) down_[keyCode] = isSet(held, keyCode);
    return releases;
}

std::optional<KeyEvent> KeyTranslation::translate(std::uint8_t keyCode, bool isDown) {
    const auto* const key = find(keyCode);
    const bool isModifier = key != nullptr && key->flags != 0;
    if (isModifier && down_[keyCode] == isDown) return std::nullopt;
    down_[keyCode] = isDown;
    const auto type = isDown ? KeyEventType::keyDown : KeyEventType::keyUp;
    return KeyEvent{isModifier ? KeyEventType::flagsChanged : type, virtualKey(keyCode), flags()};
}

} // namespace querlin
