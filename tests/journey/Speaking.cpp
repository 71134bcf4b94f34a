#include "Speaking.h"

#include "support/Desktop.h"

#include <stdexcept>

#include <unistd.h>

#include <fmt/format.h>

namespace querlin {

namespace {

constexpr int samplesPerSecond = 22050;
constexpr int bytesInASample = 2;

constexpr int bytesOf(int samples) { return bytesInASample * samples; }

} // namespace

Spoken::Spoken(const std::string& sentence) {
    static int count = 0;
    file_ = std::filesystem::temp_directory_path() / fmt::format("querlin-test-spoken-{}-{}", ::getpid(), ++count);
    // Behind the last word the recogniser needs a moment of silence, as a speaker leaves it before the key goes up. The
    // wave's header of 44 bytes is no sound.
    shell(
        fmt::format("{{ head -c {} /dev/zero; espeak-ng -v de+m3 -s 150 -b 1 --stdout '{}' | tail -c +45; head -c {} /dev/zero; }} > '{}'",
                    bytesOf(samplesPerSecond / 4), sentence, bytesOf(samplesPerSecond / 2), file_.string()));
    if (std::filesystem::file_size(file_) < bytesOf(samplesPerSecond)) throw std::runtime_error("espeak-ng doesn't speak");
}

Spoken::~Spoken() {
    std::error_code ignored;
    std::filesystem::remove(file_, ignored);
}

void Spoken::play(const std::string& output) const {
    shell(fmt::format("pacat --playback --raw --format=s16le --rate={} --channels=1 --latency-msec=500 --device={} '{}'", samplesPerSecond,
                      output, file_.string()));
}

} // namespace querlin
