// Recordings written, cut off, damaged and read back; sound converted.

#include "foundation/Files.h"
#include "platform/av/AvFileReader.h"
#include "platform/av/SwrConverter.h"
#include "platform/sndfile/SndfileCreator.h"
#include "support/HostileDisk.h"
#include "support/TempFolder.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <csignal>
#include <numbers>

#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>

namespace querlin {
namespace {

namespace fs = std::filesystem;
constexpr AudioFormat mono{48000, 1};

std::vector<float> tone(double frequency, double length, AudioFormat format = mono) {
    std::vector<float> samples;
    for (int frame = 0; frame < static_cast<int>(length * format.sampleRate); ++frame) {
        const double phase = 2 * std::numbers::pi * frequency * frame / format.sampleRate;
        samples.insert(samples.end(), format.channelCount, 0.5F * static_cast<float>(std::sin(phase)));
    }
    return samples;
}

/// The strength of a frequency, 0.5 for a whole tone.
double strength(std::span<const float> samples, double frequency, double rate) {
    double real = 0;
    double imaginary = 0;
    for (std::size_t i = 0; i < samples.size(); ++i) {
        const double phase = 2 * std::numbers::pi * frequency * static_cast<double>(i) / rate;
        real += samples[i] * std::cos(phase);
        imaginary += samples[i] * std::sin(phase);
    }
    return 2 * std::hypot(real, imaginary) / static_cast<double>(samples.size());
}

struct AudioFiles : testing::Test {
    TempFolder folder;
    SndfileCreator creator;
    AvFileReader reader;
    fs::path file = folder / "dictation.caf";

    void write(std::span<const float> samples, AudioFormat format) {
        auto writer = creator.create(file, format);
        ASSERT_TRUE(writer) << writer.error();
        for (std::size_t at = 0; at < samples.size(); at += 2048) {
            ASSERT_TRUE((*writer)->write({format, samples.subspan(at, std::min<std::size_t>(2048, samples.size() - at))}));
        }
    }
};

TEST_F(AudioFiles, WhatIsWrittenIsReadBackSampleForSample) {
    for (const auto format : {AudioFormat{48000, 1}, AudioFormat{44100, 2}, AudioFormat{16000, 1}}) {
        fs::remove(file);
        const auto samples = tone(440, 1.3, format);
        write(samples, format);
        const auto read = reader.read(file, format);
        ASSERT_TRUE(read) << read.error();
        EXPECT_EQ(read->samples, samples);
        struct stat status{};
        ASSERT_EQ(::stat(file.c_str(), &status), 0);
        EXPECT_EQ(status.st_mode & 0777U, 0600U);
    }
    EXPECT_NEAR(strength(reader.read(file, mono)->samples, 440, mono.sampleRate), 0.5, 0.05) << "in another format";
    EXPECT_FALSE(creator.create(file, mono)) << "there is one already";
    EXPECT_FALSE(creator.create(folder / "neu.caf", {}));
    EXPECT_FALSE(creator.create(folder / "nirgends" / "neu.caf", mono));
}

TEST_F(AudioFiles, ARecordingOfAKilledProcessIsWhole) {
    const auto samples = tone(440, 1);
    std::array<int, 2> pipe{};
    ASSERT_EQ(::pipe(pipe.data()), 0);
    const pid_t child = ::fork();
    if (child == 0) {
        auto writer = creator.create(file, mono);
        for (std::size_t at = 0; writer && at + 2048 <= samples.size(); at += 2048) {
            (void)(*writer)->write({mono, std::span(samples).subspan(at, 2048)});
        }
        (void)!::write(pipe[1], "w", 1);
        ::pause();
        ::_exit(0);
    }
    char told = 0;
    ASSERT_EQ(::read(pipe[0], &told, 1), 1);
    ::kill(child, SIGKILL);
    ::waitpid(child, nullptr, 0);
    const std::span whole(samples.data(), samples.size() / 2048 * 2048);
    const auto read = reader.read(file, mono);
    ASSERT_TRUE(read) << read.error();
    EXPECT_TRUE(std::ranges::equal(read->samples, whole));

    // A power cut may leave less of it than the header says.
    const auto content = contentOf(file);
    for (std::size_t size = 0; size < content.size(); size += size < 5000 ? 97 : 9973) {
        writeFile(folder / "cut.caf", std::string_view(content).substr(0, size));
        const auto cut = reader.read(folder / "cut.caf", mono);
        if (size > 6000) {
            ASSERT_TRUE(cut) << size << ": " << cut.error();
            EXPECT_GT(cut->samples.size() * sizeof(float) + 5000, size);
            EXPECT_TRUE(std::equal(cut->samples.begin(), cut->samples.end(), samples.begin())) << size;
        }
    }
}

TEST_F(AudioFiles, AFullDiskIsToldAndLeavesTheRest) {
    const auto writer = creator.create(file, mono);
    ASSERT_TRUE(writer);
    const auto samples = tone(440, 0.04);
    std::expected<void, std::string> last;
    {
        const FullDisk full(100'000);
        for (int i = 0; i < 40 && last; ++i) last = (*writer)->write({mono, samples});
    }
    ASSERT_FALSE(last);
    EXPECT_FALSE(last.error().empty());
    const auto read = reader.read(file, mono);
    ASSERT_TRUE(read);
    EXPECT_GT(read->samples.size(), 20'000U);
}

TEST_F(AudioFiles, ReadsCompressedSoundInAnyFormat) {
    const fs::path path = fs::path(QUERLIN_RECORDINGS) / "TestBefehle.m4a";
    const auto original = reader.read(path, mono);
    ASSERT_TRUE(original) << original.error();
    const auto stereo = reader.read(path, {16000, 2});
    ASSERT_TRUE(stereo) << stereo.error();
    EXPECT_NEAR(static_cast<double>(stereo->samples.size()), static_cast<double>(original->samples.size()) * 2 / 3, 1000);
    EXPECT_GT(*std::ranges::max_element(stereo->samples), 0.1F);
    // Damaged anywhere: an error or less sound, and the process lives.
    const auto content = contentOf(path);
    for (std::size_t at = 0; at < content.size(); at += 5003) {
        auto damaged = content;
        for (std::size_t i = at; i < std::min(at + 40, damaged.size()); ++i) damaged[i] = static_cast<char>(damaged[i] ^ 0x5A);
        writeFile(folder / "damaged.m4a", damaged);
        (void)reader.read(folder / "damaged.m4a", {16000, 1});
    }
}

TEST_F(AudioFiles, WhatIsNoRecordingIsAnError) {
    writeFile(folder / "text.caf", "Das ist kein Ton.");
    writeFile(folder / "empty.caf", "");
    write(tone(440, 1), mono);
    writeFile(folder / "list.m3u8", "#EXTM3U\n#EXTINF:1,\ndictation.caf\n");
    writeFile(folder / "concat.ffconcat", "ffconcat version 1.0\nfile dictation.caf\n");
    ASSERT_EQ(::mkfifo((folder / "pipe.caf").c_str(), 0600), 0);
    for (const char* name : {"text.caf", "empty.caf", "list.m3u8", "concat.ffconcat", "pipe.caf", "nirgends.caf", "."}) {
        EXPECT_FALSE(reader.read(folder / name, mono)) << name;
    }
    fs::remove(file);
    write({}, mono);
    EXPECT_FALSE(reader.read(file, mono)) << "no sound in it";
    EXPECT_FALSE(reader.read(file, {0, 1}));
}

TEST(SwrConverter, KeepsTheToneHoweverTheStreamIsCut) {
    using Row = std::pair<AudioFormat, AudioFormat>;
    for (const auto& [from, to] :
         {Row{{48000, 2}, {16000, 1}}, Row{{44100, 1}, {16000, 1}}, Row{{48000, 18}, {16000, 1}}, Row{{16000, 1}, {48000, 2}}}) {
        const auto samples = tone(1000, 1, from);
        const auto whole = makeSwrConverter(from, to)->convert(samples);
        ASSERT_TRUE(whole);
        EXPECT_NEAR(static_cast<double>(whole->size()), to.sampleRate * to.channelCount, 100) << "the filter holds a little back";
        if (to.channelCount == 1) {
            EXPECT_NEAR(strength(*whole, 1000, to.sampleRate), 0.5, 0.01);
        }
        const auto converter = makeSwrConverter(from, to);
        std::vector<float> parts;
        std::span<const float> rest(samples);
        for (std::size_t frames = 1; !rest.empty(); frames = frames * 3 % 2047 + 1) {
            const auto part = rest.first(std::min(frames * from.channelCount, rest.size()));
            rest = rest.subspan(part.size());
            const auto converted = converter->convert(part);
            ASSERT_TRUE(converted);
            parts.insert(parts.end(), converted->begin(), converted->end());
        }
        EXPECT_EQ(parts, *whole);
    }
    // What the lower rate can't carry must not come back as another tone.
    const auto high = makeSwrConverter(mono, {16000, 1})->convert(tone(12000, 1));
    EXPECT_LT(strength(*high, 4000, 16000), 0.005);
    for (const auto format : {AudioFormat{}, AudioFormat{48000, 0}, AudioFormat{1e9, 1}, AudioFormat{48000, 4000}}) {
        EXPECT_FALSE(makeSwrConverter(format, mono));
        EXPECT_FALSE(makeSwrConverter(mono, format));
    }
}

} // namespace
} // namespace querlin
