// Decodes a recording, with the program's own reader, for a sound server:
//   decode aufnahme.m4a | paplay --raw --format=float32ne --rate=48000 --channels=1

#include "platform/av/AvFileReader.h"

#include <cstdio>
#include <cstdlib>

#include <fmt/format.h>

int main(int count, char** arguments) {
    const std::vector<const char*> given(arguments + 1, arguments + count);
    if (given.size() != 1) {
        fmt::print(stderr, "decode AUFNAHME | paplay --raw --format=float32ne --rate=48000 --channels=1\n");
        return EXIT_FAILURE;
    }
    querlin::AvFileReader reader;
    const auto sound = reader.read(given.front(), {48000, 1});
    if (!sound) {
        fmt::print(stderr, "{}\n", sound.error());
        return EXIT_FAILURE;
    }
    const auto& samples = sound->samples;
    const auto written = std::fwrite(samples.data(), sizeof(samples.front()), samples.size(), stdout);
    return written == samples.size() && std::fflush(stdout) == 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}
