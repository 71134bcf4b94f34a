#include "platform/recogniser/protocol/Protocol.h"

#include <algorithm>
#include <concepts>
#include <cstring>
#include <utility>

namespace querlin::RecogniserProtocol {

namespace {

constexpr std::size_t lengthInBytes = sizeof(std::uint32_t);
constexpr std::size_t headerInBytes = sizeof(std::uint8_t) + sizeof(std::uint32_t);
constexpr std::size_t largestPayloadInBytes = largestFrameInBytes - headerInBytes;
constexpr std::size_t readingInBytes = 64U << 10U;

template<std::unsigned_integral Number>
void put(std::string& bytes, Number number) {
    bytes.resize(bytes.size() + sizeof number);
    std::memcpy(bytes.data() + bytes.size() - sizeof number, &number, sizeof number);
}

void put(std::string& bytes, std::string_view text) {
    put(bytes, static_cast<std::uint32_t>(text.size()));
    bytes += text;
}

/// Takes values off the front of a payload; behind the first that isn't there `isWhole` is false.
class Reader {
public:
    explicit Reader(std::string_view bytes) : rest_(bytes) {}

    template<std::unsigned_integral Number>
    Number number() {
        Number value = 0;
        const auto bytes = take(sizeof value);
        if (!bytes.empty())
            std::memcpy(&value, bytes.data(), sizeof value); // NOLINT(bugprone-suspicious-stringview-*)
        return value;
    }
    std::string text() { return std::string(take(number<std::uint32_t>())); }

    bool isWhole() const { return isWhole_; }
    bool isAtEnd() const { return isWhole_ && rest_.empty(); }

private:
    std::string_view take(std::size_t size) {
        isWhole_ = isWhole_ && size <= rest_.size();
        if (!isWhole_) return {};
        const auto taken = rest_.substr(0, size);
        rest_.remove_prefix(size);
        return taken;
    }

    std::string_view rest_;
    bool isWhole_ = true;
};

template<class Value>
std::optional<Value> valueIf(bool isValid, Value& value) {
    return isValid ? std::optional<Value>(std::move(value)) : std::nullopt;
}

bool isKnown(std::uint8_t kind) {
    using enum Kind;
    return (kind >= std::to_underlying(open) && kind <= std::to_underlying(cancel)) ||
           (kind >= std::to_underlying(opened) && kind <= std::to_underlying(ended));
}

} // namespace

void append(std::string& bytes, Kind kind, std::uint32_t session, std::string_view payload) {
    put(bytes, static_cast<std::uint32_t>(headerInBytes + payload.size()));
    put(bytes, static_cast<std::uint8_t>(kind));
    put(bytes, session);
    bytes += payload;
}

std::string payloadOf(const OpenRequest& request) {
    std::string bytes;
    put(bytes, request.engine);
    for (const auto& [name, value] : request.settings) {
        put(bytes, name);
        put(bytes, value);
    }
    return bytes;
}

std::string payloadOf(const std::vector<std::string>& words) {
    std::string bytes;
    for (const auto& word : words) {
        if (bytes.size() + lengthInBytes + word.size() > largestPayloadInBytes) break;
        put(bytes, word);
    }
    return bytes;
}

std::string payloadOf(const Piece& piece) {
    std::string bytes;
    put(bytes, static_cast<std::uint8_t>(piece.isFinal));
    put(bytes, piece.settled);
    put(bytes, std::string_view(piece.text).substr(0, largestPayloadInBytes / 2));
    return bytes;
}

std::string payloadOf(std::uint64_t count) {
    std::string bytes;
    put(bytes, count);
    return bytes;
}

std::string_view payloadOf(std::span<const std::int16_t> samples) {
    const auto bytes = std::as_bytes(samples);
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()}; // NOLINT(*-reinterpret-cast)
}

std::optional<OpenRequest> openRequest(std::string_view payload) {
    Reader reader(payload);
    OpenRequest request;
    request.engine = reader.text();
    while (reader.isWhole() && !reader.isAtEnd()) {
        auto name = reader.text();
        request.settings[std::move(name)] = reader.text();
    }
    return valueIf(reader.isWhole(), request);
}

std::optional<std::vector<std::string>> words(std::string_view payload) {
    Reader reader(payload);
    std::vector<std::string> words;
    while (reader.isWhole() && !reader.isAtEnd()) words.push_back(reader.text());
    return valueIf(reader.isWhole(), words);
}

std::optional<Piece> piece(std::string_view payload) {
    Reader reader(payload);
    Piece piece;
    piece.isFinal = reader.number<std::uint8_t>() != 0;
    piece.settled = reader.number<std::uint64_t>();
    piece.text = reader.text();
    return valueIf(reader.isAtEnd(), piece);
}

std::optional<std::uint64_t> count(std::string_view payload) {
    Reader reader(payload);
    auto count = reader.number<std::uint64_t>();
    return valueIf(reader.isAtEnd(), count);
}

std::optional<std::vector<std::int16_t>> samples(std::string_view payload) {
    if (payload.size() % sizeof(std::int16_t) != 0) return std::nullopt;
    std::vector<std::int16_t> samples(payload.size() / sizeof(std::int16_t));
    if (!samples.empty()) std::memcpy(samples.data(), payload.data(), payload.size());
    return samples;
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
    const auto kind = header.number<std::uint8_t>();
    if (!isKnown(kind)) return std::unexpected(Malformed{});
    Frame frame;
    frame.kind = static_cast<Kind>(kind);
    frame.session = header.number<std::uint32_t>();
    frame.payload = there.substr(lengthInBytes + headerInBytes, length - headerInBytes);
    begin_ += lengthInBytes + length;
    return frame;
}

} // namespace querlin::RecogniserProtocol
