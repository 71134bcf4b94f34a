#include "platform/x11/SelectionForms.h"

#include <algorithm>
#include <array>
#include <charconv>

#include <fmt/format.h>

namespace querlin {

namespace {

constexpr std::array<std::string_view, 7> pseudoTargets = {
    "TARGETS", "MULTIPLE", "TIMESTAMP", "SAVE_TARGETS", "DELETE", "INSERT_PROPERTY", "INSERT_SELECTION"};

constexpr std::array<std::string_view, 5> textTargets = {"UTF8_STRING", "text/plain;charset=utf-8",
                                                         "text/plain", "TEXT", "STRING"};

constexpr std::string_view historyHint = "x-kde-passwordManagerHint";
constexpr std::string_view preferredImage = "image/png";

} // namespace

std::string SelectionForms::inWords(const Form& form) { return fmt::format("{}/{}", form.type, form.format); }

SelectionForms::Form SelectionForms::of(const ClipboardData& data) {
    const auto slash = data.form.rfind('/'); // A type's name may have one too: "text/html/8".
    if (slash != std::string::npos && slash > 0) {
        unsigned format = 0;
        const auto* const last = data.form.data() + data.form.size();
        const auto [end, fault] = std::from_chars(data.form.data() + slash + 1, last, format);
        const bool isFormat = format == 8 || format == 16 || format == 32;
        if (fault == std::errc() && end == last && isFormat && data.bytes.size() % (format / 8) == 0)
            return {data.form.substr(0, slash), static_cast<std::uint8_t>(format)};
    }
    return {data.type, 8};
}

bool SelectionForms::isPseudo(std::string_view target) {
    return target.empty() || std::ranges::find(pseudoTargets, target) != pseudoTargets.end();
}

bool SelectionForms::isText(std::string_view target) {
    return std::ranges::find(textTargets, target) != textTargets.end();
}

bool SelectionForms::isImage(std::string_view target) { return target.starts_with("image/"); }

SelectionForms::Order SelectionForms::order(std::span<const std::string> targets) {
    Order order;
    std::vector<std::size_t> rest;
    std::optional<std::size_t> image;
    for (std::size_t i = 0; i < targets.size(); ++i) {
        if (isPseudo(targets[i])) continue;
        if (isImage(targets[i])) {
            if (!image || targets[i] == preferredImage) image = i;
            order.further.push_back(i);
        } else {
            (isText(targets[i]) ? order.principal : rest).push_back(i);
        }
    }
    order.principal.insert(order.principal.end(), rest.begin(), rest.end());
    if (image) {
        order.principal.push_back(*image);
        std::erase(order.further, *image);
    }
    return order;
}

std::optional<std::string> SelectionForms::latin1(std::string_view text) {
    std::string bytes;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto byte = static_cast<unsigned char>(text[i]);
        if (byte < 0x80) {
            bytes += text[i];
            continue;
        }
        // U+0080 to U+00FF have two bytes, and begin with C2 or C3.
        if ((byte != 0xC2 && byte != 0xC3) || i + 1 == text.size()) return std::nullopt;
        const auto second = static_cast<unsigned char>(text[++i]);
        bytes += static_cast<char>(((byte & 0x03U) << 6U) | (second & 0x3FU));
    }
    return bytes;
}

ClipboardHistory SelectionForms::historyOf(const ClipboardSnapshot::Item& item) {
    const bool isSecret = std::ranges::find(item, historyHint, &ClipboardData::type) != item.end();
    return isSecret ? ClipboardHistory::skip : ClipboardHistory::keep;
}

ClipboardSnapshot::Item SelectionForms::ofText(std::string_view text, ClipboardHistory history) {
    const std::string utf8(text);
    ClipboardSnapshot::Item item = {{"UTF8_STRING", utf8, "UTF8_STRING/8"},
                                    {"text/plain;charset=utf-8", utf8, "text/plain;charset=utf-8/8"},
                                    {"text/plain", utf8, "text/plain/8"},
                                    {"TEXT", utf8, "UTF8_STRING/8"}};
    if (auto narrow = latin1(text)) item.push_back({"STRING", std::move(*narrow), "STRING/8"});
    if (history == ClipboardHistory::skip)
        item.push_back({std::string(historyHint), "secret", std::string(historyHint) + "/8"});
    return item;
}

} // namespace querlin
