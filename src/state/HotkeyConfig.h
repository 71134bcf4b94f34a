#pragma once

#include "foundation/Json.h"
#include "foundation/RawValues.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>

namespace querlin {

/// A key that is held down by itself; the left and the right key of one kind are two keys.
enum class ModifierKey : std::uint8_t { altGr, rightSuper, rightControl, rightShift, fn, leftAlt };

/// A key held together with others.
enum class ComboHotkey : std::uint8_t { altSpace, controlSpace, superShiftD };

constexpr std::array<EnumRow<ModifierKey>, 6> enumRows(ModifierKey) {
    using enum ModifierKey;
    return {{{altGr, "rightOption", "AltGr"},
             {rightSuper, "rightCommand", "Rechte Super-Taste"},
             {rightControl, "rightControl", "Rechte Strg-Taste"},
             {rightShift, "rightShift", "Rechte Umschalttaste"},
             {fn, "fn", "Fn"},
             {leftAlt, "leftOption", "Linke Alt-Taste"}}};
}

constexpr std::array<EnumRow<ComboHotkey>, 3> enumRows(ComboHotkey) {
    using enum ComboHotkey;
    return {{{altSpace, "optionSpace", "Alt + Leertaste halten"},
             {controlSpace, "controlSpace", "Strg + Leertaste halten"},
             {superShiftD, "commandShiftD", "Super + Umschalt + D halten"}}};
}

/// The key or combination that is held while dictating. Both choices are kept, whichever is active.
struct HotkeyConfig {
    enum class Mode : std::uint8_t { holdModifier, holdCombo };

    Mode mode = Mode::holdModifier;
    ModifierKey modifier = ModifierKey::rightControl;
    ComboHotkey combo = ComboHotkey::altSpace;

    /// "Rechte Strg-Taste halten"
    std::string displayName() const;

    bool operator==(const HotkeyConfig&) const = default;
};

constexpr std::array<EnumRow<HotkeyConfig::Mode>, 2> enumRows(HotkeyConfig::Mode) {
    using enum HotkeyConfig::Mode;
    return {{{holdModifier, "holdModifier", ""}, {holdCombo, "holdCombo", ""}}};
}

/// Stored form: an object with the keys "mode", "modifier" and "combo", all required.
JsonValue toJson(const HotkeyConfig& config);
std::optional<HotkeyConfig> readJson(const JsonValue& json, const HotkeyConfig*);

} // namespace querlin
