// The recorder on a scripted machine.

#include "speech/AudioRecorder.h"
#include "support/CapturedLog.h"
#include "support/FakeAudio.h"
#include "support/ManualTime.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

namespace querlin {
namespace {

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
    hardware.deliver(loud);
    ASSERT_TRUE(recorder.start(WriteToDisk::Yes)) << "no effect";
    EXPECT_EQ(recorder.recording()->audio(), file);
    hardware.deliver(silence);
    recorder.stop();
    hardware.deliver(loud);
    EXPECT_EQ(writtenBefore, (std::vector<std::size_t>{0, 2048}));
    EXPECT_EQ(files.written.size(), 4096U);
    EXPECT_EQ(files.open, 0);
    EXPECT_TRUE(exists(file)) << "it outlives the end";
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
    const std::vector<std::pair<std::function<void(Recorder&)>, const char*>> rows = {
        {[](auto& t) { t.hardware.format = {}; }, "Kein Mikrofon gefunden."},
        {[](auto& t) { t.hardware.format = {48000, 0}; }, "Kein Mikrofon gefunden."},
        {[](auto& t) { t.files.error = "Platte voll"; }, "Platte voll"},
        {[](auto& t) { t.hardware.nextStartError = "belegt"; }, "Audio-Engine konnte nicht starten: belegt"},
    };
    for (const auto& [given, text] : rows) {
        given(*this);
        const auto started = recorder.start(WriteToDisk::Yes);
        ASSERT_FALSE(started) << text;
        EXPECT_EQ(started.error().description(), text);
        EXPECT_FALSE(recorder.isRecording()) << text;
        EXPECT_EQ(recorder.recording(), nullptr) << text;
        EXPECT_TRUE(fileNames(folder.path()).empty()) << text << ": neither audio nor lock";
        EXPECT_FALSE(hardware.engines.front()->tap) << text;
        EXPECT_EQ(files.open, 0) << text;
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
    recorder.stop();
    recorder.setPreferredDeviceUID("weg");
    ASSERT_TRUE(recorder.start(WriteToDisk::No));
    EXPECT_EQ(hardware.engines.front()->device, 0U);
}

TEST_F(Recorder, TheLevelIsNeverReportedOnTheAudioThread) {
    std::vector<float> levels;
    recorder.setOnLevel([&](float level) { levels.push_back(level); });
    ASSERT_TRUE(recorder.start(WriteToDisk::No));
    hardware.deliver(loud);
    EXPECT_TRUE(levels.empty());
    time.settle();
    recorder.stop();
    EXPECT_EQ(levels, (std::vector<float>{1, 0}));
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
}

} // namespace
} // namespace querlin
