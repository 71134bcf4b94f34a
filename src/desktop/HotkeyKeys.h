#pragma once

#include "desktop/KeyboardEvents.h"
#include "state/HotkeyConfig.h"

namespace querlin {

/// Which physical key a choice means, and the bit that tells whether it is down.
struct ModifierKeyCodes {
    std::int64_t keyCode;
    std::uint64_t flagMask;
};

constexpr ModifierKeyCodes codesOf(ModifierKey key) {
    switch (key) {
    case ModifierKey::altGr:
        return {VirtualKey::rightOption, KeyFlag::rightOptionDevice};
    case ModifierKey::rightSuper:
        return {VirtualKey::rightCommand, KeyFlag::rightCommandDevice};
    case ModifierKey::rightControl:
        return {VirtualKey::rightControl, KeyFlag::rightControlDevice};
    case ModifierKey::rightShift:
        return {VirtualKey::rightShift, KeyFlag::rightShiftDevice};
    case ModifierKey::fn:
        return {VirtualKey::fn, KeyFlag::fnDevice};
    case ModifierKey::leftAlt:
        return {VirtualKey::leftOption, KeyFlag::leftOptionDevice};
    }
    return {};
}

/// The main key of a combination, and the generic modifier bits that must all be down with it.
struct ComboKeyCodes {
    std::int64_t keyCode;
    std::uint64_t requiredFlags;
};

constexpr ComboKeyCodes codesOf(ComboHotkey combo) {
    switch (combo) {
    case ComboHotkey::altSpace:
        return {VirtualKey::space, KeyFlag::alternate};
    case ComboHotkey::controlSpace:
        return {VirtualKey::space, KeyFlag::control};
    case ComboHotkey::superShiftD:
        return {VirtualKey::d, KeyFlag::command | KeyFlag::shift};
    }
    return {};
}

} // namespace querlin
