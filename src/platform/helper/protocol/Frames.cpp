#include "platform/helper/protocol/Frames.h"

#include <utility>

namespace querlin::HelperProtocol {

namespace {

constexpr std::size_t lengthInBytes = sizeof(std::uint32_t);
constexpr std::size_t headerInBytes = largestFrameInBytes - largestPayloadInBytes;
constexpr std::size_t readingInBytes = 64U << 10U;

} // namespace

void append(std::string& bytes, std::uint8_t kind, std::uint32_t session, std::string_view payload) {
    put(bytes, static_cast<std::uint32_t>(headerInBytes + payload.size()));
    put(bytes, kind);
    put(bytes, session);
    bytes += payload;
}

void put(std::string& bytes, std::string_view text) {
    put(bytes, static_cast<std::uint32_t>(text.size()));
    bytes += text;
}

std::string_view Reader::take(std::size_t size) {
    isWhole_ = isWhole_ && size <= rest_.size();
    if (!isWhole_) return {};
    const auto taken = rest_.substr(0, size);
    rest_.remove_prefix(size);
    return taken;
}

std::span<char> Parser::room() {
    if (begin_ > 0) {
        bytes_.erase(0, begin_);
        end_ -= std::exchange(begin_, 0);
    }
    if (bytes_.size() < end_ + readingInBytes) bytes_.resize(end_ + readingInBytes);
    return std::span(bytes_).subspan(end_);
}

std::expected<std::optional<Frame>, Parser::Malformed> Parser::next() {
    const auto there = std::string_view(bytes_).substr(begin_, end_ - begin_);
    if (there.size() < lengthInBytes) return std::nullopt;
    Reader header(there);
    const auto length = header.number<std::uint32_t>();
    if (length < headerInBytes || length > largestFrameInBytes) return std::unexpected(Malformed{});
    if (there.size() < lengthInBytes + length) return std::nullopt;
    Frame frame;
    frame.kind = header.number<std::uint8_t>();
    frame.session = header.number<std::uint32_t>();
    frame.payload = there.substr(lengthInBytes + headerInBytes, length - headerInBytes);
    begin_ += lengthInBytes + length;
    return frame;
}

} // namespace querlin::HelperProtocol
