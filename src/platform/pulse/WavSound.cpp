#include "platform/pulse/WavSound.h"

#include <cstddef>

namespace querlin {

namespace {

constexpr std::size_t chunkHeaderInBytes = 8;
constexpr std::size_t formatInBytes = 16;
constexpr std::size_t bytesPerSample = 2;
constexpr std::uint32_t pcm = 1;

/// Little-endian; the bytes must be there.
std::uint32_t number(std::string_view bytes, std::size_t place, std::size_t count) {
    std::uint32_t value = 0;
    for (std::size_t index = count; index-- > 0;) {
        value = value << 8U | static_cast<unsigned char>(bytes[place + index]);
    }
    return value;
}

/// The content of the first chunk of that name; nothing if the file ends within it.
std::optional<std::string_view> chunk(std::string_view file, std::string_view name) {
    auto rest = file.substr(std::string_view("RIFF....WAVE").size());
    while (rest.size() >= chunkHeaderInBytes) {
        const std::size_t length = number(rest, 4, 4);
        const auto content = rest.substr(chunkHeaderInBytes, length);
        if (rest.starts_with(name)) return content.size() == length ? std::optional(content) : std::nullopt;
        const auto padded = chunkHeaderInBytes + length + (length % 2);
        if (padded > rest.size()) break;
        rest.remove_prefix(padded);
    }
    return std::nullopt;
}

} // namespace

std::optional<WavSound> WavSound::parse(std::string_view file) {
    constexpr std::string_view riff = "RIFF";
    constexpr std::string_view wave = "WAVE";
    if (file.size() < 12 || !file.starts_with(riff) || file.substr(8, 4) != wave) return std::nullopt;
    const auto format = chunk(file, "fmt ");
    const auto data = chunk(file, "data");
    if (!format || format->size() < formatInBytes || !data) return std::nullopt;
    const auto channels = number(*format, 2, 2);
    const auto rate = number(*format, 4, 4);
    if (number(*format, 0, 2) != pcm || number(*format, 14, 2) != 8 * bytesPerSample) return std::nullopt;
    if (channels < 1 || channels > 2 || rate < 8'000 || rate > 192'000) return std::nullopt;
    const auto whole = data->size() - (data->size() % (channels * bytesPerSample));
    if (whole == 0) return std::nullopt;
    return WavSound{rate, static_cast<std::uint8_t>(channels), std::string(data->substr(0, whole))};
}

} // namespace querlin
