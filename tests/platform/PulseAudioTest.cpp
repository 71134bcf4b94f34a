// Microphones of a real sound server, with all that can befall them.

#include "platform/pulse/PulseAudio.h"
#include "speech/AudioDevices.h"
#include "support/Desktop.h"
#include "support/SoundServer.h"

#include <algorithm>
#include <atomic>
#include <functional>
#include <mutex>
#include <random>
#include <thread>

#include <gtest/gtest.h>

namespace querlin {
namespace {

/// Values that no resampling and no volume would leave as they are.
std::vector<float> noise(std::size_t count) {
    std::mt19937 random(count);
    std::uniform_int_distribution<int> value(1, 30000);
    std::vector<float> samples(count);
    for (auto& sample : samples) sample = static_cast<float>(value(random)) / 32768.0F;
    return samples;
}

/// What a tap has got, from its thread.
class Heard {
public:
    AudioEngine::Tap tap() {
        return [this](const AudioBuffer& buffer) {
            const std::scoped_lock guard(lock_);
            samples_.insert(samples_.end(), buffer.samples.begin(), buffer.samples.end());
        };
    }
    std::vector<float> samples() const {
        const std::scoped_lock guard(lock_);
        return samples_;
    }
    bool contains(std::span<const float> wanted) const {
        const std::scoped_lock guard(lock_);
        return !std::ranges::search(samples_, wanted).empty();
    }
    /// Wait, five seconds at most.
    bool comes(std::size_t count) const {
        return eventually([&] { return samples().size() >= count; });
    }
    /// What has been played is on its way for a while yet.
    bool comes(std::span<const float> wanted) const {
        return eventually([&] { return contains(wanted); });
    }

private:
    mutable std::mutex lock_;
    std::vector<float> samples_;
};

struct PulseAudioTest : testing::Test {
    RunLoop loop;
    SoundServer server;
    PulseAudio hardware{loop, server.address()};
    AudioDevices devices{hardware};

    void SetUp() override {
        if (!SoundServer::isInstalled()) GTEST_SKIP() << "PulseAudio is not installed.";
    }
    bool isDefault(std::string_view name) {
        return eventually([&] {
            const auto input = devices.systemDefaultInput();
            return input && input->uid == name;
        });
    }
    /// As soon as the program knows it too.
    void addDefault(const std::string& name, AudioFormat format = {48000, 1}, std::string_view places = {}) {
        server.addMicrophone(name, format, "Mikrofon", places);
        server.setDefaultMicrophone(name);
        ASSERT_TRUE(isDefault(name));
    }
    static void record(AudioEngine& engine, Heard& to) {
        engine.installTap(2048, engine.inputFormat(), to.tap());
        const auto started = engine.start();
        ASSERT_TRUE(started) << started.error();
    }
    /// A new recording hears all that is played into a microphone.
    void expectHeard(AudioEngine& engine, const char* microphone) {
        engine.removeTap();
        Heard whole;
        record(engine, whole);
        const auto played = noise(20'000);
        server.play(microphone, played);
        EXPECT_TRUE(whole.comes(played));
        engine.removeTap();
    }
    bool changeComes() {
        const auto before = changes;
        return serveUntil(loop, [&] { return changes > before; });
    }

    Heard heard;
    int changes = 0;
};

TEST_F(PulseAudioTest, ListsMicrophonesAndNoMonitors) {
    server.addLoudspeaker("boxen");
    ASSERT_TRUE(eventually([&] { return !hardware.inputs()->devices.empty(); }));
    EXPECT_TRUE(devices.inputs().empty());
    EXPECT_FALSE(devices.systemDefaultInput()) << "the loudspeaker's monitor is the default now";
    const auto engine = hardware.makeEngine();
    EXPECT_FALSE(engine->inputFormat().isUsable());
    EXPECT_FALSE(engine->setDevice(hardware.inputs()->devices.at(0).id)) << "nobody records the loudspeakers";
    engine->installTap(2048, {48000, 1}, heard.tap());
    EXPECT_FALSE(engine->start());

    server.addMicrophone("stereo", {44100, 2}, "Äußeres Gerät");
    server.addMicrophone("mono", {16000, 1}, "Büro");
    server.setDefaultMicrophone("mono");
    ASSERT_TRUE(isDefault("mono"));
    const auto inputs = devices.inputs();
    ASSERT_EQ(inputs.size(), 2U);
    EXPECT_EQ(inputs[0].name, "Äußeres Gerät");
    EXPECT_EQ(devices.systemDefaultInput(), inputs[1]);
    EXPECT_EQ(engine->inputFormat(), (AudioFormat{16000, 1}));
    ASSERT_TRUE(engine->setDevice(inputs[0].deviceID));
    EXPECT_FALSE(engine->setDevice(4711));
    EXPECT_EQ(engine->inputFormat(), (AudioFormat{44100, 2})) << "the former choice stands";
    engine->reset();
    EXPECT_EQ(engine->inputFormat(), (AudioFormat{16000, 1}));
}

TEST_F(PulseAudioTest, EverySampleArrives) {
    using Row = std::pair<AudioFormat, const char*>;
    // Studio devices have channels without a place in the room.
    for (const auto& [format, places] : {Row{{48000, 1}, ""}, Row{{44100, 2}, ""}, Row{{48000, 2}, "aux0,aux1"}}) {
        addDefault("mikrofon", format, places);
        const auto played = noise(30'000 * format.channelCount);
        const auto engine = hardware.makeEngine();
        Heard whole;
        record(*engine, whole);
        ASSERT_TRUE(whole.comes(1));
        server.play("mikrofon", played, format);
        EXPECT_TRUE(whole.comes(played));
        engine->removeTap();
        engine->stop();
        EXPECT_FALSE(engine->isRunning());
        server.remove("mikrofon");
    }
}

TEST_F(PulseAudioTest, ATapTakesOverFromAnotherWithoutAGap) {
    addDefault("mikrofon");
    const auto played = noise(96'000);
    const auto engine = hardware.makeEngine();
    record(*engine, heard);
    std::atomic<bool> isPlaying = true;
    std::jthread player([&] {
        server.play("mikrofon", played);
        isPlaying = false;
    });
    while (isPlaying) {
        engine->removeTap();
        std::this_thread::sleep_for(std::chrono::milliseconds(7));
        record(*engine, heard);
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        ++changes;
    }
    EXPECT_TRUE(heard.comes(played));
    EXPECT_GT(changes, 10);
    engine->removeTap();
}

TEST_F(PulseAudioTest, ChangesOfTheInputInUse) {
    server.addMicrophone("zwei");
    server.addMicrophone("anders", {44100, 2});
    addDefault("eins");
    const auto engine = hardware.makeEngine();
    const auto observer = engine->observeConfigurationChange([&] { ++changes; });
    record(*engine, heard);
    ASSERT_TRUE(heard.comes(1));

    // Another default of the same format: the recording goes over to it.
    server.setDefaultMicrophone("zwei");
    ASSERT_TRUE(changeComes());
    EXPECT_EQ(engine->inputFormat(), (AudioFormat{48000, 1}));
    expectHeard(*engine, "zwei");

    // Another format, then the microphone goes, then there is none any more.
    record(*engine, heard);
    server.setDefaultMicrophone("anders");
    ASSERT_TRUE(changeComes());
    EXPECT_EQ(engine->inputFormat(), (AudioFormat{44100, 2}));
    engine->removeTap();
    Heard stereo;
    engine->installTap(2048, {44100, 2}, stereo.tap());
    server.play("zwei", noise(20'000));
    EXPECT_TRUE(stereo.samples().empty()) << "the stream is still the former one";
    ASSERT_TRUE(engine->start());
    ASSERT_TRUE(stereo.comes(1));
    engine->removeTap();
    server.setDefaultMicrophone("eins");
    ASSERT_TRUE(changeComes());
    record(*engine, heard);
    server.remove("eins");
    ASSERT_TRUE(changeComes());
    EXPECT_FALSE(engine->isRunning());
    EXPECT_TRUE(engine->inputFormat().isUsable());
    server.remove("zwei");
    server.remove("anders");
    ASSERT_TRUE(changeComes());
    EXPECT_FALSE(engine->inputFormat().isUsable());
}

TEST_F(PulseAudioTest, AChosenMicrophoneThatGoesLeadsToTheDefault) {
    server.addMicrophone("zwei");
    addDefault("eins");
    const auto engine = hardware.makeEngine();
    ASSERT_TRUE(engine->setDevice(devices.deviceID("zwei").value()));
    const auto observer = engine->observeConfigurationChange([&] { ++changes; });
    record(*engine, heard);
    server.setDefaultMicrophone("zwei");
    server.setDefaultMicrophone("eins"); // No business of ours.
    server.remove("zwei");
    ASSERT_TRUE(changeComes());
    EXPECT_EQ(changes, 1);
    expectHeard(*engine, "eins");
}

TEST_F(PulseAudioTest, AServerThatDiesEndsTheRecording) {
    addDefault("eins");
    const auto engine = hardware.makeEngine();
    const auto observer = engine->observeConfigurationChange([&] { ++changes; });
    record(*engine, heard);
    server.kill();
    ASSERT_TRUE(changeComes());
    EXPECT_FALSE(engine->inputFormat().isUsable());
    EXPECT_FALSE(engine->isRunning());
}

TEST_F(PulseAudioTest, AServerThatHangsHoldsNobodyUpForLong) {
    addDefault("eins");
    const auto engine = hardware.makeEngine();
    const auto observer = engine->observeConfigurationChange([&] { ++changes; });
    record(*engine, heard);
    server.pause();
    const auto begin = std::chrono::steady_clock::now();
    engine->removeTap();
    engine->stop();
    record(*engine, heard);
    PulseAudio another(loop, server.address());
    EXPECT_EQ(another.inputs()->defaultInput, 0U);
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(900));
    ASSERT_TRUE(changeComes()) << "it doesn't open";
    engine->removeTap();
    EXPECT_EQ(engine->start().error(), "Der Tondienst antwortet nicht.");
    engine->stop();
    server.resume();
    EXPECT_TRUE(eventually([&] { return another.inputs()->defaultInput != 0; }));
    record(*engine, heard);
    EXPECT_TRUE(heard.comes(heard.samples().size() + 4096));
    engine->removeTap();
}

TEST_F(PulseAudioTest, SeveralEnginesHearTheSameAndGoInTheMiddleOfIt) {
    addDefault("eins");
    Heard other;
    auto engine = hardware.makeEngine();
    record(*engine, heard);
    {
        const auto second = hardware.makeEngine();
        record(*second, other);
        ASSERT_TRUE(other.comes(1));
    }
    const auto count = other.samples().size();
    ASSERT_TRUE(heard.comes(heard.samples().size() + 4096));
    EXPECT_EQ(other.samples().size(), count);
    engine.reset();
}

} // namespace
} // namespace querlin
