#pragma once

#include "platform/sherpa/OnnxMetadata.h"

#include <expected>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// The files of a model, and what is to be known of them before a library reads them. Errors are German
/// texts.
namespace querlin::ModelFiles {

/// An ONNX file whose name has `part` in it; of several the first by name, but one with or without "int8"
/// in its name where that is wished for.
enum class Wish : std::uint8_t { quantised, exact };
std::optional<std::filesystem::path> onnx(const std::filesystem::path& folder, std::string_view part,
                                          Wish wish);

/// An ONNX file's own words about itself.
std::expected<OnnxMetadata::Properties, std::string> properties(const std::filesystem::path& file);
/// The number that a property names.
std::optional<std::int64_t> number(const OnnxMetadata::Properties& properties, std::string_view name);

/// How many tokens a model writes its text with: rows of "symbol number" from 0 without a gap.
std::expected<std::int64_t, std::string> tokenCount(const std::filesystem::path& file);

/// What `MODELL.json` says, or what counts without it.
struct Description {
    std::string language = "de-DE";
    std::string modelingUnit; ///< empty: not known
};
std::expected<Description, std::string> description(const std::filesystem::path& file);

} // namespace querlin::ModelFiles
