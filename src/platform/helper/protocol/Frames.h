#pragma once

#include <concepts>
#include <cstdint>
#include <cstring>
#include <expected>
#include <optional>
#include <span>
#include <string>
#include <string_view>

/// The frames that the program and a helper exchange, over a stream socket between processes of the same
/// build on the same machine:
///
///     length of kind, session and payload (4 bytes) | kind (1) | session (4) | payload
///
/// Numbers are in the machine's own byte order; a text is its length (4 bytes) and its bytes. Whoever gets
/// something else ends the connection.
namespace querlin::HelperProtocol {

inline constexpr std::size_t largestFrameInBytes = 1U << 20U;
inline constexpr std::size_t largestPayloadInBytes =
    largestFrameInBytes - sizeof(std::uint8_t) - sizeof(std::uint32_t);

// The kinds that every helper has. Each protocol adds its own: below 64 for the helper, above for the
// program.
namespace Kind {

inline constexpr std::uint8_t open = 1;    ///< to the helper, first and once: what to load
inline constexpr std::uint8_t opened = 65; ///< text: why that can't be used; empty if it can
inline constexpr std::uint8_t alive = 66;  ///< something takes long, but goes on
inline constexpr std::uint8_t note = 67;   ///< text for the log; nothing that was dictated

} // namespace Kind

struct Frame {
    std::uint8_t kind = Kind::alive;
    std::uint32_t session = 0; ///< 0 where none is meant
    std::string payload;
};

/// Adds a frame to what is to be sent. A payload beyond the largest is the caller's mistake.
void append(std::string& bytes, std::uint8_t kind, std::uint32_t session, std::string_view payload = {});

template<std::unsigned_integral Number>
void put(std::string& bytes, Number number) {
    bytes.resize(bytes.size() + sizeof number);
    std::memcpy(bytes.data() + bytes.size() - sizeof number, &number, sizeof number);
}
void put(std::string& bytes, std::string_view text);

/// Takes values off the front of a payload; after the first that isn't there `isWhole` is false.
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
    std::string_view take(std::size_t size);

    std::string_view rest_;
    bool isWhole_ = true;
};

/// Cuts what comes from the socket into frames.
class Parser {
public:
    /// Room for the next bytes; `received` says how many of them have been filled.
    std::span<char> room();
    void received(std::size_t count) { end_ += count; }

    struct Malformed {};
    /// The next whole frame; nothing if it isn't there yet. Once malformed, always malformed.
    std::expected<std::optional<Frame>, Malformed> next();

private:
    std::string bytes_;
    std::size_t begin_ = 0;
    std::size_t end_ = 0;
};

} // namespace querlin::HelperProtocol
