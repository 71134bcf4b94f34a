#include "platform/recogniser/protocol/Protocol.h"

#include "platform/helper/protocol/Frames.h"

#include <cstring>
#include <utility>

namespace querlin::RecogniserProtocol {

using HelperProtocol::largestPayloadInBytes;
using HelperProtocol::put;
using HelperProtocol::Reader;

namespace {

template<class Value>
std::optional<Value> valueIf(bool isValid, Value& value) {
    return isValid ? std::optional<Value>(std::move(value)) : std::nullopt;
}

} // namespace

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
        if (bytes.size() + sizeof(std::uint32_t) + word.size() > largestPayloadInBytes) break;
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

std::optional<OpenRequest> openRequestOf(std::string_view payload) {
    Reader reader(payload);
    OpenRequest request;
    request.engine = reader.text();
    while (reader.isWhole() && !reader.isAtEnd()) {
        auto name = reader.text();
        request.settings[std::move(name)] = reader.text();
    }
    return valueIf(reader.isWhole(), request);
}

std::optional<std::vector<std::string>> wordsOf(std::string_view payload) {
    Reader reader(payload);
    std::vector<std::string> words;
    while (reader.isWhole() && !reader.isAtEnd()) words.push_back(reader.text());
    return valueIf(reader.isWhole(), words);
}

std::optional<Piece> pieceOf(std::string_view payload) {
    Reader reader(payload);
    Piece piece;
    piece.isFinal = reader.number<std::uint8_t>() != 0;
    piece.settled = reader.number<std::uint64_t>();
    piece.text = reader.text();
    return valueIf(reader.isAtEnd(), piece);
}

std::optional<std::uint64_t> countOf(std::string_view payload) {
    Reader reader(payload);
    auto count = reader.number<std::uint64_t>();
    return valueIf(reader.isAtEnd(), count);
}

std::optional<std::vector<std::int16_t>> samplesOf(std::string_view payload) {
    if (payload.size() % sizeof(std::int16_t) != 0) return std::nullopt;
    std::vector<std::int16_t> samples(payload.size() / sizeof(std::int16_t));
    if (!samples.empty()) std::memcpy(samples.data(), payload.data(), payload.size());
    return samples;
}

} // namespace querlin::RecogniserProtocol
