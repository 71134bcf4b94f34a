#include "Cases.h"
#include "Services.h"
#include "Sounds.h"

#include "report/Measuring.h"

#include <cstring>

#include <fmt/format.h>

namespace querlin::bench {

namespace {

/// The seconds of each call while the helper recognises on the other core, in the rhythm of a hasty
/// microphone.
template<class Call>
std::vector<double> measure(const std::vector<AudioBuffer>& parts, Call call) {
    std::vector<double> times;
    for (const auto& part : parts) {
        const Stopwatch stopwatch;
        call(part);
        times.push_back(stopwatch.seconds());
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    return times;
}

void compare(Report& report, std::string_view name, const std::vector<double>& ours,
             const std::vector<double>& peer) {
    report.times(fmt::format("{}, median", name), percentile(ours, 0.5), percentile(peer, 0.5), {});
    report.times(fmt::format("{}, one of a thousand", name), percentile(ours, 0.999), percentile(peer, 0.999),
                 {});
    report.row(fmt::format("{}, worst", name), inWords(percentile(ours, 1)), "43 ms",
               0.0427 / percentile(ours, 1), Bar::atLeast(1));
}

} // namespace

void runAppending(Report& report) {
    const auto sound = dictation(90);
    const auto parts = buffers(sound);
    const auto copies = measure(parts, [](const AudioBuffer& part) {
        std::vector<float> copy(part.samples.begin(), part.samples.end());
        asm volatile("" : : "r"(copy.data()) : "memory");
    });

    report.section("append, a buffer of 43 ms, against a copy of it");
    Services services;
    const auto classic = services.begin(TranscriptionEngine::classic);
    compare(report, "classic", measure(parts, [&](const AudioBuffer& part) { classic->append(part); }),
            copies);
    (void)services.finish(*classic);
    if (!services.streaming.isHere("")) {
        report.note("The streaming recogniser's library is not here.");
        return;
    }
    const auto streaming = services.begin(TranscriptionEngine::streaming);
    compare(report, "streaming", measure(parts, [&](const AudioBuffer& part) { streaming->append(part); }),
            copies);
    (void)services.finish(*streaming);
}

} // namespace querlin::bench
