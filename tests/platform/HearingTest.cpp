// From the microphone to the recogniser and the file, on a real sound server.

#include "foundation/RunLoop.h"
#include "foundation/TaskGroup.h"
#include "foundation/ThreadPool.h"
#include "platform/av/AvFileReader.h"
#include "platform/pulse/PulseAudio.h"
#include "platform/sndfile/SndfileCreator.h"
#include "speech/AudioRecorder.h"
#include "speech/StreamingModelTranscriber.h"
#include "support/Desktop.h"
#include "support/FakeEngine.h"
#include "support/SoundServer.h"

#include <algorithm>
#include <thread>

#include <gtest/gtest.h>

namespace querlin {
namespace {

constexpr AudioFormat format{48000, 1};

struct Hearing : testing::Test {
    TempFolder folder;
    SoundServer server;
    RunLoop loop;
    SystemClock clock;
    ThreadPool pool{1};
    PulseAudio hardware{loop, server.address()};
    SndfileCreator files;
    AudioRecorder recorder{{loop, clock, hardware, files, RecordingFolder(folder.path())}};
    FakeEngine engine;
    TaskGroup tasks;

    void SetUp() override {
        if (!SoundServer::isInstalled()) GTEST_SKIP() << "PulseAudio is not installed.";
        engine.onFinish = [this] { engine.end(); };
        server.addMicrophone("mikrofon");
        ASSERT_TRUE(eventually([&] { return hardware.inputs()->defaultInput != 0; }));
    }

    std::shared_ptr<StreamingTranscriber> listen() {
        auto transcriber = std::make_shared<StreamingModelTranscriber>(Runtime{loop, clock, pool}, engine);
        EXPECT_TRUE(transcriber->begin("de-DE"));
        recorder.setOnBuffer([transcriber](const AudioBuffer& buffer) { transcriber->append(buffer); });
        const auto started = recorder.start(WriteToDisk::Yes);
        EXPECT_TRUE(started) << started.error().description();
        return transcriber;
    }
    void finish(StreamingTranscriber& transcriber) {
        recorder.stop();
        tasks.start(finishing(transcriber));
        loop.run();
    }
    bool hasHeard(std::span<const float> samples) {
        return eventually([&] {
            const std::scoped_lock guard(engine.lock);
            return !std::ranges::search(engine.heard, samples).empty();
        });
    }
    std::vector<float> recorded() { return AvFileReader().read(recorder.recording()->audio(), format).value().samples; }

private:
    Task<> finishing(StreamingTranscriber& transcriber) {
        (void)co_await transcriber.finish();
        loop.quit();
    }
};

/// No two stretches of it are alike, so a lost, doubled or misplaced sample shows.
std::vector<float> ramp(std::size_t count) {
    std::vector<float> samples(count);
    for (std::size_t i = 0; i < count; ++i) samples[i] = static_cast<float>(i + 1) / 1'000'000;
    return samples;
}

TEST_F(Hearing, EverySampleReachesTheFileAndTheRecogniserThroughAStartUpOfTwoSeconds) {
    engine.duringBegin = [] { std::this_thread::sleep_for(seconds(2)); };
    const auto transcriber = listen();
    const auto played = ramp(3 * 48000);
    server.play("mikrofon", played);
    ASSERT_TRUE(hasHeard(played));
    finish(*transcriber);
    const auto file = recorded();
    EXPECT_FALSE(std::ranges::search(file, played).empty());
    EXPECT_EQ(engine.heard, file) << "the recogniser has heard what the file holds";
}

TEST_F(Hearing, AServerThatRestartsInMidDictationIsRecordedOnBothSides) {
    const auto transcriber = listen();
    std::vector<ConfigurationChange> changes;
    recorder.setOnConfigurationChange([&](const ConfigurationChange& change) {
        changes.push_back(change);
        loop.quit();
    });
    const auto before = ramp(24000);
    server.play("mikrofon", before);
    ASSERT_TRUE(hasHeard(before)); // What the server still held would go with it.
    server.kill();
    const auto restart = loop.after(seconds(0.2), [&] {
        server.start();
        server.addMicrophone("mikrofon", format, "Büro");
        server.setDefaultMicrophone("mikrofon");
    });
    loop.run();
    EXPECT_EQ(changes, (std::vector{ConfigurationChange{ConfigurationChange::Kind::resumed, "Büro"}}));
    auto after = ramp(24000);
    std::ranges::reverse(after);
    server.play("mikrofon", after);
    ASSERT_TRUE(hasHeard(after));
    finish(*transcriber);
    const auto file = recorded();
    const auto first = std::ranges::search(file, before);
    ASSERT_FALSE(first.empty());
    EXPECT_FALSE(std::ranges::search(std::ranges::subrange(first.end(), file.end()), after).empty());
    EXPECT_EQ(engine.heard, file);
}

} // namespace
} // namespace querlin
