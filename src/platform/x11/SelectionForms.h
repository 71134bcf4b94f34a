#pragma once

#include "desktop/Clipboard.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

/// What the forms of a clipboard are called and how they are stored, as far as it needs no server.
namespace querlin::SelectionForms {

/// Type and width of a property: "ATOM/32".
struct Form {
    std::string type;
    std::uint8_t format = 8;

    bool operator==(const Form&) const = default;
};
std::string inWords(const Form& form);
/// What `ClipboardData::form` says. Bytes under their own name where it says nothing.
Form of(const ClipboardData& data);

/// Whether a target is a question about the clipboard, or an order, and none of its forms.
bool isPseudo(std::string_view target);
bool isText(std::string_view target);
bool isImage(std::string_view target);

/// In which order forms are asked for, so that the ones that tell most are there when time runs out.
struct Order {
    std::vector<std::size_t> principal; ///< text, then the rest, then one image
    std::vector<std::size_t> further;   ///< other encodings of that image
};
Order order(std::span<const std::string> targets);

/// How a plain text is offered. As Latin-1 only if it can be written so.
ClipboardSnapshot::Item ofText(std::string_view text, ClipboardHistory history);
/// Whether a program that has copied this wants it to be skipped by histories, as password safes do.
ClipboardHistory historyOf(const ClipboardSnapshot::Item& item);
/// Nothing if there is a character beyond U+00FF.
std::optional<std::string> latin1(std::string_view text);

} // namespace querlin::SelectionForms
