#include "Journey.h"

#include "foundation/Characters.h"

#include <algorithm>
#include <csignal>
#include <stdexcept>

#include <unistd.h>

#include <fmt/format.h>

namespace querlin {

namespace {

constexpr int samplesPerSecond = 22050;
constexpr int bytesInASample = 2;

constexpr int bytesOf(int samples) { return bytesInASample * samples; }

} // namespace

Spoken::Spoken(const std::string& sentence) {
    static int count = 0;
    file_ = std::filesystem::temp_directory_path() / fmt::format("querlin-test-spoken-{}-{}", ::getpid(), ++count);
    // After the last word the recogniser needs a moment of silence, as a speaker leaves it before the key goes up. The
    // wave's header of 44 bytes is no sound.
    shell(
        fmt::format("{{ head -c {} /dev/zero; espeak-ng -v de+m3 -s 150 -b 1 --stdout '{}' | tail -c +45; head -c {} /dev/zero; }} > '{}'",
                    bytesOf(samplesPerSecond / 4), sentence, bytesOf(samplesPerSecond / 2), file_.string()));
    if (std::filesystem::file_size(file_) < bytesOf(samplesPerSecond)) throw std::runtime_error("espeak-ng doesn't speak");
}

Spoken::~Spoken() {
    std::error_code ignored;
    std::filesystem::remove(file_, ignored);
}

void Spoken::play(const std::string& output) const {
    shell(fmt::format("pacat --playback --raw --format=s16le --rate={} --channels=1 --latency-msec=500 --device={} '{}'", samplesPerSecond,
                      output, file_.string()));
}

void Journey::SetUp() {
    ASSERT_TRUE(isInVirtualDesktop());
    tray.emplace(std::vector<std::string>{"trayer", "--edge", "top", "--SetDockType", "true"});
    ASSERT_TRUE(eventually(&Journey::hasTray));
    copy(copiedBefore);
    querlin.prepare([](AppSettings& settings) {
        settings.hasCompletedOnboarding.set(true);
        settings.playStartSound.set(false);
        settings.playStopSound.set(false);
        settings.updateLawsAutomatically.set(false);
        settings.checkForUpdatesAtLaunch.set(false);
    });
}

void Journey::TearDown() {
    release();
    if (querlin.isRunning()) {
        EXPECT_EQ(querlin.end(SIGTERM), 0);
    }
    if (HasFailure()) std::cout << "The program's log:\n" << querlin.log() << notifications() << '\n';
}

void Journey::startQuerlin() {
    querlin.start();
    ASSERT_TRUE(querlin.listens());
}

std::unique_ptr<Program> Journey::open(std::vector<std::string> command, const std::string& field) {
    auto program = std::make_unique<Program>(std::move(command));
    EXPECT_TRUE(comesToShow(field));
    return program;
}

testing::AssertionResult Journey::comesToShow(const std::string& field) {
    if (const auto result = becomes(field, std::chrono::seconds(40)); !result) return result;
    if (eventually([&] { return answersAtOnce(field); })) return testing::AssertionSuccess();
    return testing::AssertionFailure() << "the program is busy with itself";
}

bool Journey::answersAtOnce(const std::string& field) {
    constexpr int looks = 10;
    constexpr Duration allOfThem = std::chrono::milliseconds(200);
    const auto begun = std::chrono::steady_clock::now();
    for (int i = 0; i < looks; ++i) {
        if (look() != field) return false;
    }
    return std::chrono::steady_clock::now() - begun < allOfThem;
}

bool Journey::hasTray() { return !shell("xdotool search --class '^trayer$'").empty(); }

void Journey::press() { shell(fmt::format("xdotool keydown {}", holdKey)); }

void Journey::release() { shell(fmt::format("xdotool keyup {}", holdKey)); }

testing::AssertionResult Journey::beginRecording() {
    press();
    if (eventually(&Journey::overlayIsShown)) return testing::AssertionSuccess();
    release();
    return testing::AssertionFailure() << "no overlay";
}

void Journey::dictate(const std::string& sentence) {
    const Spoken spoken(sentence);
    ASSERT_TRUE(beginRecording());
    spoken.play();
    release();
}

void Journey::say(const std::string& sentence) const {
    const Spoken spoken(sentence);
    ASSERT_TRUE(beginRecording());
    spoken.play();
    ASSERT_TRUE(eventually([&] { return querlin.textSoFar() == sentence; })) << querlin.textSoFar();
}

bool Journey::overlayIsShown() { return !shell("xdotool search --onlyvisible --name '^Querlin Overlay$'").empty(); }

testing::AssertionResult Journey::overlayGoes() {
    if (eventually([] { return !overlayIsShown(); })) return testing::AssertionSuccess();
    return testing::AssertionFailure() << "the overlay stays";
}

std::string Journey::clipboard() { return shell("timeout 5 xclip -o -selection clipboard"); }

void Journey::copy(const std::string& text) { shell(fmt::format("printf %s '{}' | xclip -i -selection clipboard >/dev/null", text)); }

std::string Journey::notifications() { return shell("dunstctl close-all; dunstctl history"); }

void Journey::expectBooked(const std::vector<std::string>& texts) const {
    std::size_t words = 0;
    for (const auto& text : texts) words += static_cast<std::size_t>(countWords(text));
    const auto statistics = fmt::format("{} Diktate, {} Wörter", texts.size(), words);
    // Both are written in the background.
    EXPECT_TRUE(eventually([&] { return std::ranges::equal(querlin.history(), texts, {}, &DictationEntry::text); }));
    EXPECT_TRUE(eventually([&] { return querlin.statistics() == statistics; })) << querlin.statistics();
    EXPECT_EQ(querlin.countOf("[timing] Erkennung"), texts.size());
    EXPECT_TRUE(querlin.recordings().empty());
}

void Journey::expectDelivered(const std::string& field, const std::string& text) {
    EXPECT_TRUE(querlin.says("[timing] Erkennung"));
    EXPECT_TRUE(becomes(field));
    EXPECT_TRUE(overlayGoes());
    EXPECT_EQ(clipboard(), copiedBefore);
    EXPECT_TRUE(querlin.rescued().empty());
    expectBooked({text});
}

void Journey::expectRescued(const std::string& text, const std::string& reason) const {
    EXPECT_TRUE(querlin.says(fmt::format("[rescue] {} – {} Wörter gerettet → ", reason, countWords(text))));
    const auto files = querlin.rescued();
    ASSERT_EQ(files.size(), 2U);
    EXPECT_TRUE(files[0].ends_with(".caf")) << files[0];
    EXPECT_EQ(contentOf(querlin.paths().rescuedDictations() / files[1]), text);
    EXPECT_GT(std::filesystem::file_size(querlin.paths().rescuedDictations() / files[0]), 50'000U);
    EXPECT_TRUE(eventually([&] { return notifications().contains("Diktat nicht eingefügt") && notifications().contains(reason); }));
    EXPECT_TRUE(overlayGoes());
    expectBooked({});
}

void Journey::expectNothingKept() const {
    EXPECT_EQ(clipboard(), copiedBefore);
    EXPECT_TRUE(querlin.rescued().empty());
    expectBooked({});
}

} // namespace querlin
