#include "hear/Options.h"

#include <charconv>

#include <fmt/format.h>

namespace querlin {

namespace {

std::optional<std::int64_t> number(std::string_view text) {
    std::int64_t value = 0;
    const auto [end, fault] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (fault != std::errc() || end != text.data() + text.size() || value < 0) return std::nullopt;
    return value;
}

std::vector<std::string> split(std::string_view list) {
    std::vector<std::string> words;
    while (!list.empty()) {
        const auto comma = list.find(',');
        if (comma != 0) words.emplace_back(list.substr(0, comma));
        list.remove_prefix(comma == std::string_view::npos ? list.size() : comma + 1);
    }
    return words;
}

/// False if the value doesn't fit the option, or there is no such option.
bool setOption(HearOptions& options, std::string_view name, std::string_view value) {
    if (name == "--engine") {
        if (value != "classic" && value != "streaming") return false;
        options.engine = value == "classic" ? TranscriptionEngine::classic : TranscriptionEngine::streaming;
    } else if (name == "--microphone") {
        options.microphone = true;
    } else if (name == "--devices") {
        options.devices = true;
    } else if (name == "--realtime") {
        options.realtime = true;
    } else if (name == "--device") {
        options.device = value;
    } else if (name == "--words") {
        options.words = split(value);
    } else if (name == "--models") {
        options.models = value;
    } else if (name == "--vocabulary" || name == "--seconds") {
        const auto count = number(value);
        if (!count) return false;
        if (name == "--vocabulary") options.vocabulary = *count;
        if (name == "--seconds") options.length = std::chrono::seconds(*count);
    } else {
        return false;
    }
    return true;
}

} // namespace

std::expected<HearOptions, std::string> HearOptions::parse(std::span<const std::string_view> arguments) {
    HearOptions options;
    for (const auto argument : arguments) {
        if (!argument.starts_with("--")) {
            options.files.emplace_back(argument);
            continue;
        }
        const auto equals = argument.find('=');
        const auto value =
            equals == std::string_view::npos ? std::string_view() : argument.substr(equals + 1);
        if (!setOption(options, argument.substr(0, equals), value)) {
            return std::unexpected(fmt::format("„{}“ ist hier nicht möglich.", argument));
        }
    }
    if (!options.devices && options.microphone != options.files.empty()) {
        return std::unexpected(std::string("Entweder Dateien oder --microphone."));
    }
    return options;
}

} // namespace querlin
