// Recorder, devices and level monitor on a scripted machine.

#include "speech/AudioRecorder.h"
#include "foundation/Time.h"
#include "speech/AudioLevel.h"
#include "speech/InputLevelMonitor.h"
#include "support/CapturedLog.h"
#include "support/FakeAudio.h"
#include "support/ManualTime.h"
#include "support/TempFolder.h"

#include <cmath>
#include <limits>

#include <gtest/gtest.h>

namespace querlin {
namespace {

using Kind = AudioRecorderError::Kind;
using Change = ConfigurationChange::Kind;

const std::vector<float> silence(2048, 0.0F);
const std::vector<float> loud(2048, 1.0F);

struct Recorder : testing::Test {
    TempFolder folder;
    CapturedLog log;
    ManualTime time;
    FakeAudioHardware hardware;
    FakeAudioFiles files;
    AudioRecorder recorder{{time, time, hardware, files, RecordingFolder(folder.path())}};
};

TEST_F(Recorder, HandsEachBufferOnBeforeItGoesToTheFile) {
    std::vector<std::size_t> writtenBefore;
    recorder.setOnBuffer([&](const AudioBuffer&) { writtenBefore.push_back(files.written.size()); });
    ASSERT_TRUE(recorder.start(WriteToDisk::Yes));
    const auto file = recorder.recording()->audio();
    EXPECT_TRUE(file.filename().string().starts_with("dictation-"));
    EXPECT_EQ(file.extension(), ".caf");
    hardware.deliver(loud);
    time.advance(seconds(1));
    ASSERT_TRUE(recorder.start(WriteToDisk::Yes)) << "no effect";
    EXPECT_EQ(recorder.recording()->audio(), file);
    EXPECT_EQ(recorder.duration(), 1);
    hardware.deliver(silence);
    recorder.stop();
    hardware.deliver(loud);
    EXPECT_EQ(writtenBefore, (std::vector<std::size_t>{0, 2048}));
    EXPECT_EQ(files.written.size(), 4096U);
    EXPECT_EQ(files.open, 0);
    EXPECT_EQ(recorder.duration(), 0);
    EXPECT_TRUE(exists(file)) << "it outlives the end";
    recorder.discardRecording();
    recorder.discardRecording();
    EXPECT_TRUE(fileNames(folder.path()).empty());
}

TEST_F(Recorder, AWordThatCannotBeWrittenIsStillHeard) {
    files.writeError = "Platte voll";
    std::size_t heard = 0;
    recorder.setOnBuffer([&](const AudioBuffer& buffer) { heard += buffer.samples.size(); });
    ASSERT_TRUE(recorder.start(WriteToDisk::Yes));
    hardware.deliver(loud);
    EXPECT_EQ(heard, loud.size());
}

TEST_F(Recorder, FailuresOfTheStart) {
    struct Row {
        std::function<void(Recorder&)> given;
        const char* text;
    };
    const std::vector<Row> rows = {
        {[](auto& t) { t.hardware.format = {}; }, "Kein Mikrofon gefunden."},
        {[](auto& t) { t.hardware.format = {48000, 0}; }, "Kein Mikrofon gefunden."},
        {[](auto& t) { t.files.error = "Platte voll"; }, "Platte voll"},
        {[](auto& t) { t.hardware.nextStartError = "belegt"; }, "Audio-Engine konnte nicht starten: belegt"},
    };
    for (const auto& row : rows) {
        row.given(*this);
        const auto started = recorder.start(WriteToDisk::Yes);
        ASSERT_FALSE(started) << row.text;
        EXPECT_EQ(started.error().description(), row.text);
        EXPECT_FALSE(recorder.isRecording()) << row.text;
        EXPECT_EQ(recorder.recording(), nullptr) << row.text;
        EXPECT_TRUE(fileNames(folder.path()).empty()) << row.text << ": neither audio nor lock";
        EXPECT_FALSE(hardware.engines.front()->tap) << row.text;
        EXPECT_EQ(files.open, 0) << row.text;
        hardware.format = {48000, 1};
        files.error.reset();
    }
    ASSERT_TRUE(recorder.start(WriteToDisk::No));
    EXPECT_EQ(recorder.recording(), nullptr);
}

TEST_F(Recorder, AMicrophoneThatIsMissingOrRefusesLeadsToTheDefault) {
    recorder.setPreferredDeviceUID("usb-1");
    ASSERT_TRUE(recorder.start(WriteToDisk::No));
    EXPECT_EQ(hardware.engines.front()->device, 7U);
    recorder.stop();
    hardware.deviceError = "besetzt";
    ASSERT_TRUE(recorder.start(WriteToDisk::No));
    EXPECT_EQ(hardware.engines.front()->device, 0U);
    EXPECT_TRUE(log.has("[audio] Mikrofon konnte nicht gesetzt werden: besetzt – nutze Systemvorgabe."));
    recorder.stop();
    recorder.setPreferredDeviceUID("weg");
    ASSERT_TRUE(recorder.start(WriteToDisk::No));
    EXPECT_TRUE(log.has("[audio] Gewähltes Mikrofon nicht verfügbar – nutze Systemvorgabe."));
}

TEST_F(Recorder, TheLevelRisesAtOnceAndFallsSlowly) {
    std::vector<float> levels;
    recorder.setOnLevel([&](float level) { levels.push_back(level); });
    ASSERT_TRUE(recorder.start(WriteToDisk::No));
    hardware.deliver(loud);
    hardware.deliver(silence); // Within the same 0.05 seconds: filtered, not reported.
    EXPECT_TRUE(levels.empty()) << "never on the audio thread";
    time.advance(seconds(0.06));
    hardware.deliver(silence);
    time.settle();
    ASSERT_EQ(levels.size(), 2U);
    EXPECT_EQ(levels[0], 1);
    EXPECT_FLOAT_EQ(levels[1], 0.82F * 0.82F);
    recorder.stop();
    EXPECT_EQ(levels.back(), 0) << "reported directly";
    EXPECT_EQ(levels.size(), 3U);
    recorder.stop();
    EXPECT_EQ(levels.size(), 3U);
}

TEST_F(Recorder, AChangeOfTheHardware) {
    struct Row {
        AudioFormat format;
        std::optional<std::string> startError;
        ConfigurationChange told;
        bool goesOn;
        const char* reason;
    };
    for (const auto& row : {Row{{48000, 1}, {}, {Change::resumed, "Headset"}, true, "same format"},
                            Row{{44100, 1}, {}, {Change::formatChanged, "Headset"}, false, "other rate"},
                            Row{{48000, 2}, {}, {Change::formatChanged, "Headset"}, false, "other channels"},
                            Row{{}, {}, {Change::failed, "Kein Eingang mehr verfügbar."}, false, "no input"},
                            Row{{48000, 1}, "belegt", {Change::failed, "belegt"}, false, "the engine doesn't start again"}}) {
        hardware.format = {48000, 1};
        std::vector<ConfigurationChange> told;
        std::size_t heard = 0;
        recorder.setOnConfigurationChange([&](const ConfigurationChange& change) { told.push_back(change); });
        recorder.setOnBuffer([&](const AudioBuffer& buffer) { heard += buffer.samples.size(); });
        ASSERT_TRUE(recorder.start(WriteToDisk::Yes));
        hardware.nextStartError = row.startError;
        hardware.change(row.format);
        hardware.deliver(loud);
        EXPECT_EQ(told, std::vector{row.told}) << row.reason;
        EXPECT_EQ(heard > 0, row.goesOn) << row.reason;
        EXPECT_TRUE(recorder.isRecording()) << row.reason;
        recorder.stop();
        hardware.change({48000, 1});
        EXPECT_EQ(told.size(), 1U) << "nobody listens any more: " << row.reason;
    }
    hardware.standard = 0;
    recorder.setOnConfigurationChange([](const ConfigurationChange& change) { EXPECT_EQ(change.text, "unbekanntes Gerät"); });
    ASSERT_TRUE(recorder.start(WriteToDisk::No));
    hardware.change({48000, 1});
}

TEST(AudioLevel, MapsTheLastFiftyDecibels) {
    struct Row {
        float sample;
        float level;
    };
    for (const auto& row : {Row{0, 0}, Row{0.000001F, 0}, Row{0.00316F, 0}, Row{0.1F, 0.6F}, Row{1, 1}, Row{4, 1},
                            Row{std::numeric_limits<float>::quiet_NaN(), 0}, Row{std::numeric_limits<float>::infinity(), 1}}) {
        const std::vector stereo = {row.sample, 0.5F, row.sample, 0.5F};
        const auto level = AudioLevel::of({{48000, 2}, stereo});
        ASSERT_TRUE(level);
        EXPECT_NEAR(*level, row.level, 0.001) << row.sample << ": the first channel alone counts";
    }
    EXPECT_FALSE(AudioLevel::of({{48000, 1}, {}}));
    EXPECT_FALSE(AudioLevel::of({}));
}

TEST(AudioDevices, ListsInputsByNameAndFindsThem) {
    FakeAudioHardware hardware;
    hardware.list = {{1, "a", "usb-Mikrofon", 1}, {2, "b", "Lautsprecher", 0}, {3, "c", "Ähre", 2},
                     {4, "d", "Axt", 1},          {5, {}, "Namenlos", 1},      {6, "f", {}, 1}};
    AudioDevices devices(hardware);
    const std::vector<AudioInputDevice> expected = {{"c", "Ähre", 3}, {"d", "Axt", 4}, {"a", "usb-Mikrofon", 1}};
    EXPECT_EQ(devices.inputs(), expected);
    EXPECT_EQ(devices.deviceID("d"), 4U);
    EXPECT_FALSE(devices.deviceID("b"));
    EXPECT_FALSE(devices.systemDefaultInput()) << "the default is not in the list";
    hardware.standard = 3;
    EXPECT_EQ(devices.systemDefaultInput(), expected[0]);
}

TEST(InputLevelMonitor, ShowsWhatAMicrophoneHears) {
    ManualTime time;
    FakeAudioHardware hardware;
    InputLevelMonitor monitor(time, hardware);
    hardware.format = {};
    monitor.start({});
    EXPECT_EQ(monitor.failure().get(), "Kein Eingang verfügbar.");
    hardware.format = {48000, 1};
    hardware.nextStartError = "belegt";
    monitor.start({});
    EXPECT_EQ(monitor.failure().get(), "belegt");
    EXPECT_FALSE(monitor.isRunning().get());

    hardware.deviceError = "besetzt"; // No failure: the default is listened to.
    monitor.start("usb-1");
    EXPECT_FALSE(monitor.failure().get());
    hardware.deliver(loud);
    hardware.deliver(silence);
    time.settle();
    EXPECT_FLOAT_EQ(monitor.level().get(), 0.82F);
    hardware.deliver(loud); // Still on its way when another listening begins.
    monitor.start("weg");
    time.settle();
    EXPECT_TRUE(monitor.isRunning().get());
    EXPECT_EQ(monitor.level().get(), 0);
    monitor.stop();
    EXPECT_FALSE(hardware.engines.front()->running);
}

} // namespace
} // namespace querlin
