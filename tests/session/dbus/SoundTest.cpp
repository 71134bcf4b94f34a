#include "platform/pulse/PulseSoundPlayer.h"
#include "support/CapturedLog.h"
#include "support/Desktop.h"
#include "support/SoundServer.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>

namespace querlin {
namespace {

using enum FeedbackSound;

/// Hears what the desktop's loudspeaker plays.
class Listener {
public:
    Listener() {
        eventually([this] { return !heard().empty(); });
    }

    /// How many milliseconds have sound in them.
    int loudMilliseconds() const {
        const auto samples = heard();
        int count = 0;
        for (std::size_t place = 0; place + 48 <= samples.size(); place += 48) {
            double energy = 0;
            for (std::size_t index = place; index < place + 48; ++index) energy += std::pow(samples[index] / 32768.0, 2);
            count += energy / 48 > 1e-6 ? 1 : 0;
        }
        return count;
    }

private:
    std::vector<std::int16_t> heard() const {
        const auto bytes = contentOf(file_);
        std::vector<std::int16_t> samples(bytes.size() / sizeof(std::int16_t));
        if (!samples.empty()) std::memcpy(samples.data(), bytes.data(), samples.size() * sizeof(std::int16_t));
        return samples;
    }

    TempFolder folder_;
    std::filesystem::path file_ = folder_ / "heard.s16";
    Program recorder_{
        {"sh", "-c",
         "exec parec --device=lautsprecher.monitor --raw --format=s16le --rate=48000 --channels=1 --latency-msec=10 > " + file_.string()}};
};

TEST(PulseSoundPlayer, EachSoundIsHeard) {
    PulseSoundPlayer player(QUERLIN_SOUNDS);
    const Listener listener;
    int heard = 0;
    for (const auto& [sound, leastMilliseconds] : {std::pair(start, 120), std::pair(success, 80), std::pair(failure, 280)}) {
        player.play(sound);
        EXPECT_TRUE(eventually([&] { return listener.loudMilliseconds() > heard + leastMilliseconds; }))
            << static_cast<int>(sound) << ": " << listener.loudMilliseconds() - heard;
        heard = listener.loudMilliseconds();
    }
}

TEST(PulseSoundPlayer, WithoutAServerThereIsSilenceUntilThereIsOne) {
    const CapturedLog log;
    SoundServer server;
    server.addLoudspeaker("anderer");
    server.pause();
    {
        PulseSoundPlayer player(QUERLIN_SOUNDS, server.address());
        const auto begin = std::chrono::steady_clock::now();
        for (int count = 0; count < 100; ++count) player.play(success);
        EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(50));
    }
    server.resume();
    PulseSoundPlayer player(QUERLIN_SOUNDS, server.address());
    const auto isKnown = [&] { return shell("PULSE_SERVER=" + server.address() + " pactl list samples").contains("querlin-Pop"); };
    player.play(success);
    ASSERT_TRUE(eventually(isKnown));
    server.kill();
    ASSERT_TRUE(eventually([&] { return log.countOf("keine Signaltöne") == 1; }));
    player.play(success);
    server.start();
    server.addLoudspeaker("anderer");
    ASSERT_FALSE(isKnown());
    player.play(success);
    EXPECT_TRUE(eventually(isKnown));
    EXPECT_EQ(log.lines().size(), 1U);
}

} // namespace
} // namespace querlin
