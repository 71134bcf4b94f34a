#pragma once

#include "foundation/Json.h"

#include <optional>
#include <string>
#include <vector>

namespace querlin {

/// A text that the user has given a name to speak; the content may hold placeholders ("{Datum}").
struct TextBlock {
    std::string name;
    std::string content;

    /// What a new installation starts with.
    static const std::vector<TextBlock>& builtIn();

    bool operator==(const TextBlock&) const = default;
};

JsonValue toJson(const TextBlock& block);
std::optional<TextBlock> readJson(const JsonValue& json, const TextBlock*);

} // namespace querlin
