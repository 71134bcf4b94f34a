#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace querlin {

/// A new random UUID (RFC 9562, version 4) in its canonical upper-case form,
/// "3F2504E0-4F89-41D3-9A0C-0305E82C3301".
std::string newUuid();

/// The canonical upper-case form of a UUID; unset if the text isn't one.
std::optional<std::string> canonicalUuid(std::string_view text);

} // namespace querlin
