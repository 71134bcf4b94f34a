#include "platform/sherpa/OnnxMetadata.h"

#include <array>
#include <fstream>
#include <optional>
#include <string_view>
#include <utility>

namespace querlin::OnnxMetadata {

namespace {

constexpr std::uint64_t largestPropertyInBytes = 1U << 20U;
constexpr std::size_t mostProperties = 1000;
constexpr std::size_t mostFields = 100'000;

// Protocol Buffers, "Encoding": how a field's value is written.
enum Wire : std::uint8_t { varint = 0, eightBytes = 1, lengthDelimited = 2, fourBytes = 5 };

// The numbers of fields in onnx.proto
constexpr std::uint64_t irVersion = 1;
constexpr std::uint64_t graph = 7;
constexpr std::uint64_t metadataProps = 14;
constexpr std::uint64_t key = 1;
constexpr std::uint64_t value = 2;

/// The number at the front of what `next` gives byte by byte; nothing if it ends or is too long.
template<class Next>
std::optional<std::uint64_t> number(Next next) {
    std::uint64_t result = 0;
    for (unsigned shift = 0; shift < 64; shift += 7) {
        const std::optional<std::uint8_t> byte = next();
        if (!byte) return std::nullopt;
        result |= std::uint64_t(*byte & 0x7FU) << shift;
        if ((*byte & 0x80U) == 0) return result;
    }
    return std::nullopt;
}

/// The texts of one `StringStringEntryProto`; nothing if it is malformed.
std::optional<std::pair<std::string, std::string>> property(std::string_view bytes) {
    const auto next = [&bytes]() -> std::optional<std::uint8_t> {
        if (bytes.empty()) return std::nullopt;
        const auto first = static_cast<std::uint8_t>(bytes.front());
        bytes.remove_prefix(1);
        return first;
    };
    std::pair<std::string, std::string> result;
    while (!bytes.empty()) {
        const auto tag = number(next);
        const auto length = number(next);
        if (!tag || !length || (*tag & 7U) != lengthDelimited || *length > bytes.size()) return std::nullopt;
        const auto text = bytes.substr(0, *length);
        bytes.remove_prefix(*length);
        if (*tag >> 3U == key) result.first = text;
        if (*tag >> 3U == value) result.second = text;
    }
    return result;
}

class Scan {
public:
    Scan(std::ifstream file, std::uint64_t size) : file_(std::move(file)), left_(size) {}

    std::expected<Properties, Fault> run() {
        for (std::size_t i = 0; left_ > 0; ++i) {
            const auto fault = i < mostFields ? field() : Fault::foreign;
            // Behind its first field it is known what the file is.
            if (fault) return std::unexpected(hasVersion_ ? *fault : Fault::foreign);
        }
        if (!hasVersion_ || !hasGraph_)
            return std::unexpected(hasVersion_ ? Fault::truncated : Fault::foreign);
        return std::move(properties_);
    }

private:
    std::optional<std::uint8_t> byte() {
        char next = 0;
        if (left_ == 0 || !file_.get(next)) return std::nullopt;
        --left_;
        return static_cast<std::uint8_t>(next);
    }
    bool skip(std::uint64_t size) {
        if (size > left_) return false;
        left_ -= size;
        return static_cast<bool>(file_.seekg(static_cast<std::streamoff>(size), std::ios::cur));
    }

    std::optional<Fault> field() {
        const auto next = [this] { return byte(); };
        const auto tag = number(next);
        if (!tag) return Fault::truncated;
        const auto name = *tag >> 3U;
        if (name == 0) return Fault::foreign;
        hasGraph_ = hasGraph_ || name == graph;
        switch (*tag & 7U) {
        case varint:
            if (!number(next)) return Fault::truncated;
            hasVersion_ = hasVersion_ || name == irVersion;
            return std::nullopt;
        case eightBytes:
            return skip(8) ? std::nullopt : std::optional(Fault::truncated);
        case fourBytes:
            return skip(4) ? std::nullopt : std::optional(Fault::truncated);
        case lengthDelimited: {
            const auto length = number(next);
            if (!length || *length > left_) return Fault::truncated;
            if (name == metadataProps) return takeProperty(*length);
            return skip(*length) ? std::nullopt : std::optional(Fault::truncated);
        }
        default:
            return Fault::foreign;
        }
    }

    std::optional<Fault> takeProperty(std::uint64_t length) {
        if (length > largestPropertyInBytes || properties_.size() >= mostProperties) return Fault::foreign;
        std::string bytes(length, '\0');
        if (!file_.read(bytes.data(), static_cast<std::streamsize>(length))) return Fault::truncated;
        left_ -= length;
        auto found = property(bytes);
        if (!found) return Fault::foreign;
        properties_.insert_or_assign(std::move(found->first), std::move(found->second));
        return std::nullopt;
    }

    std::ifstream file_;
    std::uint64_t left_;
    Properties properties_;
    bool hasVersion_ = false;
    bool hasGraph_ = false;
};

} // namespace

std::expected<Properties, Fault> read(const std::filesystem::path& file) {
    std::error_code failure;
    const auto size = std::filesystem::file_size(file, failure);
    std::ifstream stream(file, std::ios::binary);
    if (failure || !stream) return std::unexpected(Fault::unreadable);
    return Scan(std::move(stream), size).run();
}

} // namespace querlin::OnnxMetadata
