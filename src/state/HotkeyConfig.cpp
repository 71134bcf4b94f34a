#include "state/HotkeyConfig.h"

#include "state/JsonFields.h"

namespace querlin {

std::string HotkeyConfig::displayName() const {
    if (mode == Mode::holdCombo) return std::string(querlin::displayName(combo));
    return std::string(querlin::displayName(modifier)) + " halten";
}

JsonValue toJson(const HotkeyConfig& config) {
    return JsonValue::Object{{"mode", std::string(rawValue(config.mode))},
                             {"modifier", std::string(rawValue(config.modifier))},
                             {"combo", std::string(rawValue(config.combo))}};
}

std::optional<HotkeyConfig> readJson(const JsonValue& json, const HotkeyConfig*) {
    const auto mode = JsonFields::rawValued<HotkeyConfig::Mode>(json, "mode");
    const auto modifier = JsonFields::rawValued<ModifierKey>(json, "modifier");
    const auto combo = JsonFields::rawValued<ComboHotkey>(json, "combo");
    if (!mode || !modifier || !combo) return std::nullopt;
    return HotkeyConfig{*mode, *modifier, *combo};
}

} // namespace querlin
