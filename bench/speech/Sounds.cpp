#include "Sounds.h"

#include "platform/av/AvFileReader.h"

#include <array>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <string>

#include <unistd.h>

#include <fmt/format.h>

namespace querlin::bench {

namespace {

constexpr std::size_t framesPerBuffer = 2048;

constexpr std::array sentences = {
    "Sehr geehrte Frau Schneider Komma", "der Antrag auf Wohngeld wurde am dritten März bewilligt Punkt",
    "die Heimkosten betragen monatlich zwei tausend vier hundert Euro Punkt neuer Absatz",
    "ich bitte um Übersendung der Rechnung bis zum zwölften April Punkt",
    "das Gutachten liegt noch nicht vor Komma die Anhörung findet am Montag statt Punkt"};

} // namespace

DecodedAudio dictation(double seconds) {
    const auto file = std::filesystem::temp_directory_path() / fmt::format("speech-bench-{}.wav", ::getpid());
    AvFileReader reader;
    DecodedAudio all{{48000, 1}, {}};
    for (std::size_t i = 0; static_cast<double>(all.samples.size()) < seconds * all.format.sampleRate; ++i) {
        const auto command = fmt::format("espeak-ng -v de+m3 -s 150 -w '{}' '{}'", file.string(),
                                         sentences.at(i % sentences.size()));
        if (std::system(command.c_str()) != 0) throw std::runtime_error("espeak-ng doesn't speak");
        const auto part = reader.read(file, all.format);
        if (!part) throw std::runtime_error(part.error());
        all.samples.insert(all.samples.end(), part->samples.begin(), part->samples.end());
    }
    std::filesystem::remove(file);
    return all;
}

std::vector<AudioBuffer> buffers(const DecodedAudio& sound) {
    std::vector<AudioBuffer> parts;
    std::span<const float> rest(sound.samples);
    while (!rest.empty()) {
        const auto part = rest.first(std::min(framesPerBuffer, rest.size()));
        parts.push_back({sound.format, part});
        rest = rest.subspan(part.size());
    }
    return parts;
}

} // namespace querlin::bench
