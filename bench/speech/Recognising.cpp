#include "Cases.h"
#include "Services.h"
#include "Sounds.h"

#include "platform/pocketsphinx/engine/SphinxDecoder.h"
#include "report/Measuring.h"

#include <cmath>
#include <fstream>
#include <thread>

#include <fmt/format.h>
#include <sys/types.h>

namespace querlin::bench {

namespace {

double seconds(const DecodedAudio& sound) {
    return static_cast<double>(sound.samples.size()) / sound.format.sampleRate;
}

/// The decoder alone, in this process: no helper, no socket, no conversion, no words to favour.
double decoderAlone(SphinxDecoder& decoder, const DecodedAudio& sound) {
    const auto converted = makeSwrConverter(sound.format, {16000, 1})->convert(sound.samples);
    std::vector<std::int16_t> samples;
    for (const float sample : *converted)
        samples.push_back(static_cast<std::int16_t>(std::lround(sample * 32767)));
    return secondsOf([&] {
        decoder.beginStream();
        decoder.beginUtterance();
        std::span<const std::int16_t> rest(samples);
        while (!rest.empty()) {
            const auto part = rest.first(std::min<std::size_t>(1600, rest.size()));
            decoder.process(part);
            rest = rest.subspan(part.size());
        }
        decoder.endUtterance();
        return decoder.text();
    });
}

double wholeWay(Services& services, const DecodedAudio& sound) {
    return secondsOf([&] {
        const auto transcriber = services.begin(TranscriptionEngine::classic);
        for (const auto& part : buffers(sound)) transcriber->append(part);
        return services.finish(*transcriber);
    });
}

/// From the end of a dictation that was spoken at its own speed to its text.
double wait(Services& services, TranscriptionEngine engine, const DecodedAudio& sound) {
    const auto transcriber = services.begin(engine);
    auto due = std::chrono::steady_clock::now();
    for (const auto& part : buffers(sound)) {
        const double length = static_cast<double>(part.samples.size()) / part.format.sampleRate;
        due += std::chrono::duration_cast<std::chrono::nanoseconds>(std::chrono::duration<double>(length));
        std::this_thread::sleep_until(due);
        transcriber->append(part);
    }
    return secondsOf([&] { return services.finish(*transcriber); });
}

/// What a process holds in memory, in MB.
double memoryOf(pid_t process) {
    std::ifstream pages(fmt::format("/proc/{}/statm", process));
    double all = 0;
    double resident = 0;
    pages >> all >> resident;
    return resident * 4096 / 1e6;
}

} // namespace

void runRecognising(Report& report) {
    Services services;
    const auto decoder = SphinxDecoder::open(QUERLIN_STARTER_MODEL);
    if (!decoder) throw std::runtime_error(decoder.error());
    const auto minute = dictation(60);
    (void)wholeWay(services, dictation(1)); // The helper is there, the model loaded.

    report.section("classic, a minute at once, against its decoder alone");
    const auto [ours, alone] = interleavedMedians(
        5, [&] { return wholeWay(services, minute); }, [&] { return decoderAlone(**decoder, minute); });
    report.times("the whole way", ours, alone, Bar::atMost(1.5));
    report.row("real time", inWords(ours), inWords(seconds(minute)), seconds(minute) / ours, Bar::atLeast(1));

    report.section("the wait after a dictation of ten seconds");
    const auto spoken = dictation(10);
    const auto shown = [&](std::string_view name, TranscriptionEngine engine) {
        std::vector<double> waits;
        for (int i = 0; i < 3; ++i) waits.push_back(wait(services, engine, spoken));
        report.row(name, inWords(percentile(waits, 1)), "500 ms", 0.5 / percentile(waits, 1),
                   Bar::atLeast(1));
    };
    shown("classic", TranscriptionEngine::classic);
    if (services.streaming.isHere("")) shown("streaming", TranscriptionEngine::streaming);

    report.section("memory");
    report.note(fmt::format("helper with the starter model       {:6.0f} MB",
                            memoryOf(services.classic.process().helper())));
    if (const auto process = services.streaming.process()) {
        report.note(
            fmt::format("helper with the streaming test model {:5.0f} MB", memoryOf(process->helper())));
    }
}

} // namespace querlin::bench
