#include "platform/dbus/NotificationText.h"

#include "foundation/Utf8.h"

namespace querlin::NotificationText {

namespace {

/// The bus refuses messages with one, though they are well-formed.
bool isNoncharacter(char32_t scalar) {
    return (scalar & 0xFFFE) == 0xFFFE || (scalar >= 0xFDD0 && scalar <= 0xFDEF);
}

bool isControl(char32_t scalar) { return scalar < 0x20 || (scalar >= 0x7F && scalar < 0xA0); }

/// What `lineEnd` is put for each line end.
std::string cleaned(std::string_view text, char lineEnd) {
    std::string clean;
    clean.reserve(text.size());
    bool isBehindReturn = false;
    while (!text.empty()) {
        const auto [scalar, length] = decodeScalar(text);
        text.remove_prefix(length);
        if (scalar == '\r' || (scalar == '\n' && !isBehindReturn)) {
            clean += lineEnd;
        } else if (scalar == '\t') {
            clean += ' ';
        } else if (!isControl(scalar)) {
            appendScalar(clean, isNoncharacter(scalar) ? replacementScalar : scalar);
        }
        isBehindReturn = scalar == '\r';
    }
    return clean;
}

} // namespace

std::string title(std::string_view text) { return cleaned(text, ' '); }

std::string body(std::string_view text, Markup markup) {
    auto clean = cleaned(text, '\n');
    if (markup == Markup::no) return clean;
    std::string escaped;
    escaped.reserve(clean.size());
    for (const char byte : clean) {
        switch (byte) {
        case '&':
            escaped += "&amp;";
            break;
        case '<':
            escaped += "&lt;";
            break;
        case '>':
            escaped += "&gt;";
            break;
        default:
            escaped += byte;
        }
    }
    return escaped;
}

} // namespace querlin::NotificationText
