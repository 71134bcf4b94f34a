#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

/// What the program and its recognition helper say to each other, beside what every helper says. Sound is 16
/// kHz mono of 16 bits, and places in it are counted in samples from the beginning of its session.
namespace querlin::RecogniserProtocol {

inline constexpr std::uint32_t sampleRate = 16000;

namespace Kind {

// To the helper
inline constexpr std::uint8_t prepare = 2; ///< words: the next session will have them, so get ready
inline constexpr std::uint8_t begin = 3;   ///< words: a new session
inline constexpr std::uint8_t audio = 4;   ///< samples, the next ones of a session
inline constexpr std::uint8_t end = 5;     ///< no more samples follow
inline constexpr std::uint8_t cancel = 6;  ///< the session is given up; nothing more is to be said about it

// From the helper
inline constexpr std::uint8_t consumed = 68; ///< so many samples of a session have been worked through
inline constexpr std::uint8_t piece = 69;    ///< a piece of a session's text
inline constexpr std::uint8_t ended = 70;    ///< text: why a session failed; empty if it is complete

} // namespace Kind

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

std::string payloadOf(const OpenRequest& request);
/// As many words as fit; the last ones are left out.
std::string payloadOf(const std::vector<std::string>& words);
std::string payloadOf(const Piece& piece);
std::string payloadOf(std::uint64_t count);
/// The samples as they lie in memory.
std::string_view payloadOf(std::span<const std::int16_t> samples);

// The way back; nothing for a payload that is malformed.
std::optional<OpenRequest> openRequestOf(std::string_view payload);
std::optional<std::vector<std::string>> wordsOf(std::string_view payload);
std::optional<Piece> pieceOf(std::string_view payload);
std::optional<std::uint64_t> countOf(std::string_view payload);
std::optional<std::vector<std::int16_t>> samplesOf(std::string_view payload);

} // namespace querlin::RecogniserProtocol
