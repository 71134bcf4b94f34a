#include "platform/sherpa/ModelFiles.h"

#include "foundation/Files.h"
#include "foundation/Json.h"

#include <algorithm>
#include <charconv>
#include <set>

#include <fmt/format.h>

namespace querlin::ModelFiles {

namespace fs = std::filesystem;

namespace {

constexpr std::size_t largestTokensInBytes = 16U << 20U;
constexpr std::size_t largestDescriptionInBytes = 64U << 10U;

std::optional<std::int64_t> integer(std::string_view text) {
    std::int64_t number = 0;
    const auto [end, failure] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (failure != std::errc() || end != text.data() + text.size()) return std::nullopt;
    return number;
}

std::string unreadable(const fs::path& file) {
    return fmt::format("{} lässt sich nicht lesen.", file.filename().string());
}

} // namespace

std::optional<fs::path> onnx(const fs::path& folder, std::string_view part, Wish wish) {
    std::vector<fs::path> found;
    std::error_code failure;
    for (const auto& entry : fs::directory_iterator(folder, failure)) {
        const auto name = entry.path().filename().string();
        if (name.ends_with(".onnx") && !name.starts_with('.') && name.find(part) != std::string::npos)
            found.push_back(entry.path());
    }
    std::ranges::sort(found);
    const auto isWished = [wish](const fs::path& file) {
        return (file.filename().string().find("int8") != std::string::npos) == (wish == Wish::quantised);
    };
    const auto best = std::ranges::find_if(found, isWished);
    if (best != found.end()) return *best;
    return found.empty() ? std::nullopt : std::optional(found.front());
}

std::expected<OnnxMetadata::Properties, std::string> properties(const fs::path& file) {
    auto properties = OnnxMetadata::read(file);
    if (properties) return std::move(*properties);
    switch (properties.error()) {
    case OnnxMetadata::Fault::unreadable:
        return std::unexpected(unreadable(file));
    case OnnxMetadata::Fault::foreign:
        return std::unexpected(fmt::format("{} ist keine ONNX-Datei.", file.filename().string()));
    case OnnxMetadata::Fault::truncated:
        return std::unexpected(
            fmt::format("{} ist unvollständig; bitte neu herunterladen.", file.filename().string()));
    }
    return std::unexpected(unreadable(file));
}

std::optional<std::int64_t> number(const OnnxMetadata::Properties& properties, std::string_view name) {
    const auto found = properties.find(name);
    return found == properties.end() ? std::nullopt : integer(found->second);
}

/// Symbols like "#0", which only the training knows, may follow the others.
std::expected<std::int64_t, std::string> tokenCount(const fs::path& file) {
    const auto content = Files::read(file, largestTokensInBytes);
    if (!content)
        return std::unexpected(content.error().isMissing() ? "Es fehlt tokens.txt." : unreadable(file));
    std::set<std::int64_t> numbers;
    std::string_view rest = *content;
    while (!rest.empty()) {
        auto row = rest.substr(0, rest.find('\n'));
        rest.remove_prefix(std::min(rest.size(), row.size() + 1));
        if (row.ends_with('\r')) row.remove_suffix(1);
        if (row.empty()) continue;
        const auto blank = row.find_last_of(" \t");
        const auto number = blank == std::string_view::npos ? std::nullopt : integer(row.substr(blank + 1));
        if (!number || *number < 0) return std::unexpected("tokens.txt ist beschädigt.");
        const auto symbol = row.substr(0, blank);
        if (symbol.size() > 1 && symbol.starts_with('#') && integer(symbol.substr(1))) continue;
        numbers.insert(*number);
    }
    const auto count = static_cast<std::int64_t>(numbers.size());
    if (numbers.empty() || *numbers.rbegin() + 1 != count)
        return std::unexpected("tokens.txt ist beschädigt.");
    return count;
}

std::expected<Description, std::string> description(const fs::path& file) {
    const auto content = Files::read(file, largestDescriptionInBytes);
    if (!content && content.error().isMissing()) return Description{};
    const auto json = content ? Json::parse(*content) : std::unexpected(JsonError{});
    if (!json || !json->object()) return std::unexpected("MODELL.json ist beschädigt.");
    Description description;
    const auto take = [&](std::string_view name, std::string& to) {
        const auto* const member = json->member(name);
        if (member && member->string()) to = *member->string();
    };
    take("language", description.language);
    take("modelingUnit", description.modelingUnit);
    return description;
}

} // namespace querlin::ModelFiles
