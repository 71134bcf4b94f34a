#pragma once

#include "foundation/RawValues.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>

namespace querlin {

/// Where a dictation's text will land: the application in front and the kind of field with the focus.
struct DictationContext {
    enum class FieldKind : std::uint8_t { unknown, singleLine, multiLine, search, secure };

    std::string appName = "unbekannt";
    std::optional<std::string> applicationId;
    FieldKind field = FieldKind::unknown;

    /// For logs: "Mail [com.example.mail] · Textbereich".
    std::string summary() const;

    bool operator==(const DictationContext&) const = default;
};

constexpr std::array<EnumRow<DictationContext::FieldKind>, 5> enumRows(DictationContext::FieldKind) {
    using enum DictationContext::FieldKind;
    return {{{unknown, "unknown", "unbekannt"},
             {singleLine, "singleLine", "einzeiliges Feld"},
             {multiLine, "multiLine", "Textbereich"},
             {search, "search", "Suchfeld"},
             {secure, "secure", "Passwortfeld"}}};
}

/// Whether a field wants the words as spoken, without styling: search fields alone do.
constexpr bool wantsRawText(DictationContext::FieldKind kind) {
    return kind == DictationContext::FieldKind::search;
}

} // namespace querlin
