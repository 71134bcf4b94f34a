// What the recognisers cost: how fast they are, how long after the last sound the text is there, what the
// helper takes of memory, and what the audio thread pays for a buffer, beside a queue under a lock.

#include "Speech.h"

#include "platform/av/SwrConverter.h"
#include "platform/pocketsphinx/ClassicService.h"
#include "platform/recogniser/Mailbox.h"
#include "platform/sherpa/StreamingService.h"
#include "support/TempFolder.h"

#include <algorithm>
#include <deque>
#include <sstream>
#include <thread>

#include <fmt/core.h>

namespace querlin {
namespace {

namespace fs = std::filesystem;

constexpr double dictationSeconds = 10;
constexpr int dictations = 5;

double span(Instant begin) { return inSeconds(std::chrono::steady_clock::now() - begin); }

Sound dictation(double seconds) {
    Sound sound = silence(0.2, microphone);
    for (int i = 0; sound.seconds() < seconds; ++i) {
        sound += spoken("das Amtsgericht hat den Antrag auf Betreuung genehmigt", i % 2 == 0 ? "m3" : "f2");
        sound += spoken("ich bitte um Rückmeldung bis Montag wegen der Rechnung der Apotheke", "m7");
    }
    sound.samples.resize(static_cast<std::size_t>(seconds * microphone.sampleRate) * microphone.channelCount);
    return sound;
}

std::size_t kilobytes(pid_t process, std::string_view field) {
    std::istringstream status(contentOf("/proc/" + std::to_string(process) + "/status"));
    std::string word;
    std::size_t size = 0;
    while (status >> word) {
        if (word == field) status >> size;
    }
    return size;
}

/// One recognition of either form: what takes sound, and what waits for the end of it.
struct Recognition {
    std::function<void(const AudioBuffer&)> append;
    std::function<void()> finish;
};

void measure(const char* name, const std::function<Recognition()>& begin,
             const std::function<pid_t()>& helper, const Sound& longSound, const Sound& shortSound) {
    {
        const auto warm = begin();
        shortSound.play(warm.append);
        warm.finish();
    }
    const auto start = std::chrono::steady_clock::now();
    const auto fast = begin();
    longSound.play(fast.append);
    fast.finish();
    fmt::print("{:<10} Echtzeitfaktor {:.3f}", name, span(start) / longSound.seconds());

    std::vector<double> latencies;
    for (int i = 0; i < dictations; ++i) {
        const auto live = begin();
        auto next = std::chrono::steady_clock::now();
        shortSound.play([&](const AudioBuffer& buffer) {
            live.append(buffer);
            next += seconds(static_cast<double>(buffer.samples.size()) / buffer.format.channelCount /
                            buffer.format.sampleRate);
            std::this_thread::sleep_until(next);
        });
        const auto end = std::chrono::steady_clock::now();
        live.finish();
        latencies.push_back(1000 * span(end));
    }
    std::ranges::sort(latencies);
    fmt::print("   Ende eines Diktats von {} s bis zum Text {:.0f} ms (längstens {:.0f})   Speicher {} kB\n",
               shortSound.seconds(), latencies[latencies.size() / 2], latencies.back(),
               kilobytes(helper(), "VmHWM:"));
}

void measureClassic(const Sound& longSound, const Sound& shortSound) {
    ClassicService service({.model = QUERLIN_STARTER_MODEL, .makeConverter = makeSwrConverter});
    const auto begin = [&] {
        const auto listener = std::make_shared<Listener>();
        const std::shared_ptr<SpeechRecognitionTask> task =
            service.recognizer("de-DE")->start({}, listener->classic());
        return Recognition{[task](const AudioBuffer& buffer) { task->append(buffer); },
                           [task, listener] {
                               task->endAudio();
                               listener->result();
                           }};
    };
    measure("klassisch", begin, [&] { return service.process().helper(); }, longSound, shortSound);
}

void measureStreaming(const Sound& longSound, const Sound& shortSound) {
    const TempFolder folder;
    fs::create_directory_symlink(QUERLIN_STREAMING_TEST_MODEL, folder / "Test");
    StreamingService service({.models = folder.path(), .libraries = {StreamingService::libraryOfBuild()}});
    if (!service.isHere()) return fmt::print("streaming: sherpa-onnx ist nicht da (tools/sherpa)\n");
    const auto begin = [&] {
        const auto listener = std::make_shared<Listener>();
        const auto analyzer = service.analyzer("de-DE", listener->streaming());
        analyzer->prepare({}).value();
        return Recognition{[analyzer](const AudioBuffer& buffer) {
                               analyzer->analyze({buffer.samples.begin(), buffer.samples.end()});
                           },
                           [analyzer, listener] {
                               analyzer->finalizeAndFinishThroughEndOfInput();
                               listener->result();
                           }};
    };
    measure(
        "streaming", begin, [&] { return service.process()->helper(); }, longSound.in(helperFormat),
        shortSound.in(helperFormat));
}

// The audio thread's part

using Samples = std::vector<float>;

/// What one would take otherwise.
class LockedQueue {
public:
    void send(Samples samples) {
        const std::scoped_lock guard(lock_);
        queue_.push_back(std::move(samples));
    }
    std::deque<Samples> takeAll() {
        const std::scoped_lock guard(lock_);
        return std::exchange(queue_, {});
    }

private:
    std::mutex lock_;
    std::deque<Samples> queue_;
};

/// Buffers of 40 ms in a row, faster than any microphone, against a receiver that is always there.
template<class Queue>
void measureSending(const char* name) {
    constexpr int buffers = 100'000;
    Queue queue;
    const Samples samples(3840);
    std::vector<double> times;
    times.reserve(buffers);
    std::jthread receiver([&queue](const std::stop_token& end) {
        while (!end.stop_requested()) queue.takeAll();
    });
    for (int i = 0; i < buffers; ++i) {
        const auto begin = std::chrono::steady_clock::now();
        queue.send(samples);
        times.push_back(1e6 * span(begin));
    }
    std::ranges::sort(times);
    fmt::print("{:<22} Median {:.1f} µs, 99,9 % unter {:.0f} µs, längstens {:.0f} µs\n", name,
               times[buffers / 2], times[buffers - buffers / 1000], times.back());
}

} // namespace
} // namespace querlin

int main() {
    using namespace querlin;
    const auto longSound = dictation(120);
    const auto shortSound = dictation(dictationSeconds);
    measureClassic(longSound, shortSound);
    measureStreaming(longSound, shortSound);
    measureSending<Mailbox<Samples>>("append, ohne Sperre");
    measureSending<LockedQueue>("append, mit Sperre");
}
