// Speech recognition for developers: the program's own recorder, transcribers and services.

#include "hear/Options.h"

#include "shared/ShownLog.h"

#include "foundation/OneShot.h"
#include "foundation/RunLoop.h"
#include "foundation/TaskGroup.h"
#include "foundation/ThreadPool.h"
#include "platform/av/AvFileReader.h"
#include "platform/av/SwrConverter.h"
#include "platform/pocketsphinx/ClassicEngine.h"
#include "platform/pulse/PulseAudio.h"
#include "platform/sherpa/StreamingEngine.h"
#include "platform/sndfile/SndfileCreator.h"
#include "speech/AudioRecorder.h"
#include "speech/LocalTranscribers.h"
#include "speech/VocabularyProvider.h"
#include "state/ApplicationPaths.h"

#include <cstdio>
#include <cstdlib>
#include <thread>

#include <fmt/format.h>

namespace querlin {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t framesPerBuffer = 2048;

/// Feeds sound into a transcriber; the end is reported on the main queue.
class Source {
public:
    virtual ~Source() = default;
    virtual std::expected<void, std::string> start(std::shared_ptr<StreamingTranscriber> into,
                                                   std::function<void()> ended) = 0;
    virtual void stop() = 0;
};

class FileSource final : public Source {
public:
    FileSource(MainQueue& queue, fs::path file, bool realtime) :
        queue_(queue), file_(std::move(file)), realtime_(realtime) {}

    std::expected<void, std::string> start(std::shared_ptr<StreamingTranscriber> into,
                                           std::function<void()> ended) override {
        AvFileReader reader;
        auto sound = reader.read(file_, {48000, 1});
        if (!sound) return std::unexpected(sound.error());
        thread_ =
            std::jthread([this, sound = std::move(*sound), into = std::move(into), ended = std::move(ended)] {
                play(sound, *into);
                queue_.post(ended);
            });
        return {};
    }
    void stop() override {
        if (thread_.joinable()) thread_.join();
    }

private:
    void play(const DecodedAudio& sound, StreamingTranscriber& into) const {
        const std::span<const float> all(sound.samples);
        auto due = std::chrono::steady_clock::now();
        for (std::size_t at = 0; at < all.size(); at += framesPerBuffer) {
            const auto part = all.subspan(at, std::min(framesPerBuffer, all.size() - at));
            due += seconds(static_cast<double>(part.size()) / sound.format.sampleRate);
            if (realtime_) std::this_thread::sleep_until(due);
            into.append({sound.format, part});
        }
    }

    MainQueue& queue_;
    fs::path file_;
    bool realtime_;
    std::jthread thread_;
};

class MicrophoneSource final : public Source {
public:
    MicrophoneSource(MainQueue& queue, AudioRecorder& recorder, std::optional<Duration> length) :
        queue_(queue), recorder_(recorder), length_(length) {}

    std::expected<void, std::string> start(std::shared_ptr<StreamingTranscriber> into,
                                           std::function<void()> ended) override {
        recorder_.setOnBuffer([into = std::move(into)](const AudioBuffer& buffer) { into->append(buffer); });
        recorder_.setOnConfigurationChange(
            [](const ConfigurationChange& change) { fmt::print("  (Eingang: {})\n", change.text); });
        if (const auto started = recorder_.start(WriteToDisk::Yes); !started) {
            return std::unexpected(started.error().description());
        }
        if (length_) {
            timer_ = queue_.after(*length_, std::move(ended));
            return {};
        }
        fmt::print("  Sprechen, dann die Eingabetaste.\n");
        std::thread([this, ended = std::move(ended)] {
            while (std::getchar() != '\n' && std::feof(stdin) == 0) {
            }
            queue_.post(ended);
        }).detach();
        return {};
    }
    void stop() override {
        recorder_.stop();
        recorder_.setOnBuffer({});
        recorder_.discardRecording();
    }

private:
    MainQueue& queue_;
    AudioRecorder& recorder_;
    std::optional<Duration> length_;
    Registration timer_;
};

/// All services of speech recognition, composed as in the program.
class Hearing {
public:
    explicit Hearing(HearOptions options) : options_(std::move(options)) {
        recorder_.setPreferredDeviceUID(options_.device);
    }

    int run() {
        int failures = 0;
        tasks_.start(hearAll(failures));
        if (!tasks_.isEmpty()) loop_.run();
        return failures == 0 ? EXIT_SUCCESS : EXIT_FAILURE;
    }

    void showDevices() {
        AudioDevices devices(hardware_);
        const auto standard = devices.systemDefaultInput();
        fmt::print("Mikrofone:\n");
        for (const auto& device : devices.inputs()) {
            fmt::print("  {} {}   --device={}\n", device == standard ? "*" : " ", device.name, device.uid);
        }
        fmt::print("Erkenner:\n");
        fmt::print("  classic    {}\n", classic_.isHere("de-DE") ? "bereit" : "nicht bereit");
        fmt::print("  streaming  {}\n", streaming_.isHere("") ? "bereit" : "nicht da");
        for (const auto& model : streaming_.models()) {
            fmt::print("    {}: {}\n", model.name, model.model ? "brauchbar" : model.model.error());
        }
    }

private:
    Task<> hearAll(int& failures) {
        for (const auto& file : options_.files) {
            fmt::print("{}\n", file.string());
            FileSource source(loop_, file, options_.realtime);
            if (!co_await hear(source)) ++failures;
        }
        if (options_.microphone) {
            MicrophoneSource source(loop_, recorder_, options_.length);
            if (!co_await hear(source)) ++failures;
        }
        loop_.quit();
    }

    Task<bool> hear(Source& source) {
        const auto transcriber = transcribers_.make(options_.engine);
        const auto begun = clock_.instant();
        const auto passed = [this, begun] { return inSeconds(clock_.instant() - begun); };
        auto showPartial = [passed](const std::string& text) {
            fmt::print("  {:6.2f}  {}\n", passed(), text);
        };
        transcriber->setOnPartialResult(lifetime_.onMain(loop_, std::move(showPartial)));
        transcriber->setContextualStrings(
            options_.vocabulary > 0 ? vocabulary_.contextualStrings(options_.words, options_.vocabulary)
                                    : options_.words);
        if (const auto ready = transcriber->begin("de-DE"); !ready) {
            fmt::print(stderr, "{}\n", ready.error().description());
            co_return false;
        }
        const OneShot<bool> ended(loop_);
        auto tellEnd = [sender = ended.sender()] { sender.send(true); };
        if (const auto started = source.start(transcriber, std::move(tellEnd)); !started) {
            fmt::print(stderr, "{}\n", started.error());
            transcriber->cancel();
            co_return false;
        }
        co_await ended;
        source.stop();
        const double soundEnded = passed();
        const auto text = co_await transcriber->finish();
        if (!text) {
            fmt::print(stderr, "{}\n", text.error().description());
            co_return false;
        }
        fmt::print("  {:6.2f}  » {}\n          {:.2f} s nach dem Ende des Tons{}\n", passed(), *text,
                   passed() - soundEnded, transcriber->wasInterrupted() ? ", die Erkennung fiel aus" : "");
        co_return !transcriber->wasInterrupted();
    }

    HearOptions options_;
    ApplicationPaths paths_ = ApplicationPaths::fromEnvironment();
    RunLoop loop_;
    SystemClock clock_;
    ThreadPool pool_{2};
    PulseAudio hardware_{loop_};
    SndfileCreator files_;
    AudioRecorder recorder_{{loop_, clock_, hardware_, files_, RecordingFolder(paths_.recordings)}};
    VocabularyProvider vocabulary_{QUERLIN_RESOURCES, pool_};
    ClassicEngine classic_{
        {.model = fs::path(QUERLIN_RESOURCES) / "StarterModel", .makeConverter = makeSwrConverter}};
    StreamingEngine streaming_{{.models = options_.models.value_or(paths_.models()),
                                .libraries = {StreamingEngine::libraryOfBuild()},
                                .makeConverter = makeSwrConverter}};
    LocalTranscribers transcribers_{{loop_, clock_, pool_}, classic_, streaming_};
    TaskGroup tasks_;
    Lifetime lifetime_;
};

int runTool(std::span<const std::string_view> arguments) {
    ShownLog log;
    const DiagnosticsLog::Installation installation(log);
    auto options = HearOptions::parse(arguments);
    if (!options) {
        fmt::print(stderr, "{}\n\n{}", options.error(), HearOptions::usage);
        return EXIT_FAILURE;
    }
    const bool devices = options->devices;
    Hearing hearing(std::move(*options));
    if (devices) hearing.showDevices();
    return devices ? EXIT_SUCCESS : hearing.run();
}

} // namespace
} // namespace querlin

int main(int count, char** arguments) {
    const std::vector<std::string_view> given(arguments + 1, arguments + count);
    return querlin::runTool(given);
}
