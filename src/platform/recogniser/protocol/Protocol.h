#pragma once

#include <cstdint>
#include <expected>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

/// What the program and its recognition helper say to each other, over a stream socket between processes of
/// the same build on the same machine:
///
///     length of kind, session and payload (4 bytes) | kind (1) | session (4) | payload
///
/// Numbers are in the machine's own byte order; a text is its length (4 bytes) and its bytes. Whoever gets
/// something else ends the connection. Sound is 16 kHz mono of 16 bits, and places in it are counted in
/// samples from the beginning of its session.
namespace querlin::RecogniserProtocol {

inline constexpr std::uint32_t sampleRate = 16000;
inline constexpr std::size_t largestFrameInBytes = 1U << 20U;

enum class Kind : std::uint8_t {
    // To the helper. `open` comes first and once; the rest as soon as it is answered.
    open = 1,    ///< which engine, and its settings
    prepare = 2, ///< words: the next session will have them, so get ready
    begin = 3,   ///< words: a new session
    audio = 4,   ///< samples, the next ones of a session
    end = 5,     ///< no more samples follow
    cancel = 6,  ///< the session is given up; nothing more is to be said about it

    // From the helper.
    opened = 65,   ///< text: why the model can't be used; empty if it can
    alive = 66,    ///< something takes long, but goes on
    note = 67,     ///< text for the log; nothing that was dictated
    consumed = 68, ///< so many samples of a session have been worked through
    piece = 69,    ///< a piece of a session's text
    ended = 70     ///< text: why a session failed; empty if it is complete
};

struct Frame {
    Kind kind = Kind::alive;
    std::uint32_t session = 0; ///< 0 where none is meant
    std::string payload;
};

/// The payload of `open`.
struct OpenRequest {
    std::string engine;
    std::map<std::string, std::string> settings;

    bool operator==(const OpenRequest&) const = default;
};

/// The payload of `piece`. A volatile text is replaced by the next piece. A final one stays, and the sound
/// up to `settled` is never needed again: a helper that is started anew begins there.
struct Piece {
    bool isFinal = false;
    std::uint64_t settled = 0;
    std::string text;

    bool operator==(const Piece&) const = default;
};

/// Adds a frame to what is to be sent. A payload beyond the largest is the caller's mistake.
void append(std::string& bytes, Kind kind, std::uint32_t session, std::string_view payload = {});

std::string payloadOf(const OpenRequest& request);
/// As many words as fit; the last ones are left out.
std::string payloadOf(const std::vector<std::string>& words);
std::string payloadOf(const Piece& piece);
std::string payloadOf(std::uint64_t count);
/// The samples as they lie in memory.
std::string_view payloadOf(std::span<const std::int16_t> samples);

// The way back; nothing for a payload that is malformed.
std::optional<OpenRequest> openRequest(std::string_view payload);
std::optional<std::vector<std::string>> words(std::string_view payload);
std::optional<Piece> piece(std::string_view payload);
std::optional<std::uint64_t> count(std::string_view payload);
std::optional<std::vector<std::int16_t>> samples(std::string_view payload);

/// Cuts what comes from the socket into frames.
class Parser {
public:
    /// Room for the next bytes, `received` of which are then told to be there.
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

} // namespace querlin::RecogniserProtocol
