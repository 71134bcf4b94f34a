#pragma once

#include <cstdint>
#include <expected>
#include <filesystem>
#include <map>
#include <string>

/// What an ONNX file says about itself (`ModelProto.metadata_props`), read without the graph, past which it
/// seeks: a file of hundreds of megabytes takes no longer than a small one.
namespace querlin::OnnxMetadata {

using Properties = std::map<std::string, std::string, std::less<>>;

enum class Fault : std::uint8_t {
    unreadable, ///< there is no such file, or it can't be read
    foreign,    ///< it is something else
    truncated   ///< its end is missing
};

std::expected<Properties, Fault> read(const std::filesystem::path& file);

} // namespace querlin::OnnxMetadata
