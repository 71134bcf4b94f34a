#pragma once

#include "foundation/Json.h"
#include "foundation/RawValues.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>

namespace querlin {

/// A key that is held down by itself; the left and the right key of one kind are two keys.
enum class ModifierKey : std::uint8_t { rightOption, rightCommand, rightControl, rightShift, fn, leftOption };

/// A key held together with others.
enum class ComboHotkey : std::uint8_t { optionSpace, controlSpace, commandShiftD };

constexpr std::array<EnumRow<ModifierKey>, 6> enumRows(ModifierKey) {
    using enum ModifierKey;
    return {{{rightOption, "rightOption", "Rechte Wahltaste (⌥)"},
             {rightCommand, "rightCommand", "Rechte Befehlstaste (⌘)"},
             {rightControl, "rightControl", "Rechte Control-Taste (⌃)"},
             {rightShift, "rightShift", "Rechte Umschalttaste (⇧)"},
             {fn, "fn", "Fn / 🌐"},
             {leftOption, "leftOption", "Linke Wahltaste (⌥)"}}};
}

constexpr std::array<EnumRow<ComboHotkey>, 3> enumRows(ComboHotkey) {
    using enum ComboHotkey;
    return {{{optionSpace, "optionSpace", "⌥ + Leertaste halten"},
             {controlSpace, "controlSpace", "⌃ + Leertaste halten"},
             {commandShiftD, "commandShiftD", "⌘ + ⇧ + D halten"}}};
}

/// The key or combination that is held while dictating. Both choices are kept, whichever is active.
struct HotkeyConfig {
    enum class Mode : std::uint8_t { holdModifier, holdCombo };

    Mode mode = Mode::holdModifier;
    ModifierKey modifier = ModifierKey::rightOption;
    ComboHotkey combo = ComboHotkey::optionSpace;

    /// "Rechte Wahltaste (⌥) halten"
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
