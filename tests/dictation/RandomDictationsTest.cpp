// Thousands of dictations with random failures, cancellations, presses and interruptions: every text
// that was recognised must be somewhere in the end, and no recording may be left over.

#include "support/DictationWorld.h"

#include <random>
#include <set>

#include <gtest/gtest.h>

namespace querlin {
namespace {

/// Breaks a stage where the laws are broken.
const std::string lawCommand = "Füge § 1814 BGB ein.";

class RandomDictations {
public:
    explicit RandomDictations(std::uint32_t seed) : random_(seed) {
        world_.settings.historyEnabled.set(chance(0.3));
        world_.settings.historyKeepAudio.set(chance(0.5));
    }

    void dictate(int number) {
        auto& w = world_;
        w.settings.cleanupMode.set(pick({CleanupMode::rules, CleanupMode::local, CleanupMode::none}));
        w.settings.engine.set(pick({TranscriptionEngine::classic, TranscriptionEngine::streaming}));
        w.services.script = script(number);
        w.inserter.next = insertResult();
        w.laws.isBroken = chance(0.5);
        w.access.microphone = chance(0.02) ? AuthorizationStatus::denied : AuthorizationStatus::authorized;
        w.audio.format = chance(0.02) ? AudioFormat{} : AudioFormat{48000, 1};
        if (chance(0.03)) w.audio.nextStartError = "belegt";
        w.model.delay = seconds(chance(0.05) ? 3600 : between(0, 3));
        w.model.next = chance(0.1) ? LocalModelAvailability::loading : LocalModelAvailability::available;
        w.model.answer.reset();
        if (chance(0.2)) w.model.answer = std::unexpected(EnhancementError{"kaputt"});
        w.inserter.delay = seconds(between(0, 1));

        w.press();
        if (chance(0.7) && w.services.transcriber) w.services.transcriber->partial("Teil von " + name(number));
        for (int i = 0; i < 4; ++i) {
            w.wait(seconds(between(0, 1)));
            if (chance(0.35)) disturb();
            look();
        }
        w.release();
        for (int i = 0; i < 4 && chance(0.5); ++i) {
            w.wait(seconds(between(0, 1.5)));
            disturb();
            look();
        }
        if (chance(0.8)) comeToRest();
    }

    void comeToRest() {
        world_.release();
        world_.controller.endDictation(); // one that the menu began
        world_.wait(seconds(20));
        look();
        EXPECT_TRUE(world_.recordings().empty());
        EXPECT_EQ(world_.phase(), DictationPhase::Kind::idle);
        EXPECT_FALSE(world_.windows.overlayIsVisible);
        expectNothingLost();
    }

    void shutDown() {
        world_.controller.shutdown();
        look();
        EXPECT_TRUE(world_.recordings().empty());
        mayBeGivenUp_ = cancelled_;
        expectNothingLost();
    }

    std::size_t transcripts() const { return world_.services.transcripts.size(); }

private:
    static std::string name(int number) { return "Das war das Diktat " + std::to_string(number) + "."; }
    bool chance(double probability) { return std::bernoulli_distribution(probability)(random_); }
    double between(double low, double high) { return std::uniform_real_distribution(low, high)(random_); }
    template<class Value>
    Value pick(std::initializer_list<Value> values) {
        return *(values.begin() +
                 std::uniform_int_distribution<std::ptrdiff_t>(0, static_cast<std::ptrdiff_t>(values.size()) - 1)(random_));
    }

    RecognitionScript script(int number) {
        RecognitionScript script;
        script.delay = seconds(between(0, 2));
        script.interrupted = chance(0.1);
        if (chance(0.05)) script.beginError = TranscriptionError{};
        if (chance(0.1)) {
            script.result = TranscriptionError{TranscriptionError::Kind::failed, "weg"};
        } else if (chance(0.1)) {
            script.result = "";
        } else if (chance(0.05)) {
            script.result = name(number) + " Alles verwerfen.";
        } else if (chance(0.05)) {
            script.result = lawCommand;
        } else {
            script.result = name(number);
        }
        return script;
    }

    InsertResult insertResult() {
        using enum TextInserter::Outcome;
        if (chance(0.1)) return std::unexpected(InsertError::noAccessibilityPermission);
        return pick({inserted, inserted, unconfirmed, notInserted});
    }

    void disturb() {
        auto& w = world_;
        switch (std::uniform_int_distribution(0, 7)(random_)) {
        case 0:
            w.press();
            if (chance(0.3)) w.key(HoldKeyEvent::Kind::otherKeyPressed);
            break;
        case 1:
            w.release();
            break;
        case 2:
            for (const auto& text : w.services.transcripts) cancelled_.insert(text);
            if (const auto* coming = std::get_if<std::string>(&w.services.script.result)) cancelled_.insert(*coming);
            w.controller.cancelDictation();
            break;
        case 3:
            w.signals.send(pick({SystemSignal::willSleep, SystemSignal::sessionResigned, SystemSignal::screenLocked}));
            break;
        case 4:
            w.audio.change(pick({w.audio.format, AudioFormat{44100, 2}, AudioFormat{}}));
            break;
        case 5:
            w.controller.insertLegalText("§ 1814");
            break;
        case 6:
            w.controller.toggleDictation();
            break;
        default:
            w.inserter.next = insertResult();
        }
        w.time.settle();
    }

    /// Notes what has been rescued before the folder forgets it.
    void look() {
        if (world_.services.notifications.size() == seenNotifications_) return;
        EXPECT_LT(world_.services.notifications.size() - seenNotifications_, RescueFolder::keepNewest);
        seenNotifications_ = world_.services.notifications.size();
        for (auto& text : world_.rescuedTexts()) safe_.insert(std::move(text));
    }

    void expectNothingLost() {
        safe_.insert(world_.inserter.delivered.begin(), world_.inserter.delivered.end());
        for (const auto& text : world_.services.transcripts) {
            const bool discarded = text.empty() || text.ends_with("Alles verwerfen.");
            const auto law = safe_.lower_bound("§ 1814 BGB"); // in place of the command for it
            const bool isLaw = text == lawCommand && law != safe_.end() && law->starts_with("§ 1814 BGB");
            EXPECT_TRUE(discarded || isLaw || safe_.contains(text) || mayBeGivenUp_.contains(text)) << text;
        }
        EXPECT_EQ(world_.inserter.mostAtOnce > 1, false);
    }

    std::mt19937 random_;
    DictationWorld world_;
    std::set<std::string> safe_;
    std::set<std::string> cancelled_;
    /// At quitting, what the user had cancelled needs no rescue.
    std::set<std::string> mayBeGivenUp_;
    std::size_t seenNotifications_ = 0;
};

TEST(RandomDictations, LoseNoTextAndLeaveNoRecording) {
    constexpr std::uint32_t worlds = 200;
    constexpr int dictationsPerWorld = 50;
    std::size_t transcripts = 0;
    for (std::uint32_t seed = 1; seed <= worlds && !testing::Test::HasFailure(); ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        RandomDictations run(seed);
        for (int i = 0; i < dictationsPerWorld && !testing::Test::HasFailure(); ++i) run.dictate(i);
        if (seed % 2 == 0) run.comeToRest();
        run.shutDown();
        transcripts += run.transcripts();
    }
    EXPECT_GT(transcripts, worlds * dictationsPerWorld / 3) << "most dictations must come to a transcript";
}

} // namespace
} // namespace querlin
