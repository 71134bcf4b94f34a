// A developer's look at the keyboard: the events that the hold key is made of, as the program sees them.

#include "shared/ShownLog.h"

#include "desktop/KeyboardEvents.h"
#include "foundation/RunLoop.h"
#include "foundation/Time.h"
#include "platform/x11/KeyTranslation.h"
#include "platform/x11/X11Keyboard.h"

#include <array>
#include <charconv>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <thread>

#include <fmt/chrono.h>
#include <fmt/format.h>
#include <pthread.h>

namespace querlin {
namespace {

constexpr std::string_view usage = R"(watch-keys [--seconds=N]
  Zeigt jede Taste der laufenden Sitzung, bis zu Strg+C oder N Sekunden lang. Was geschrieben wird, ist nicht zu
  lesen: Tasten, die keine Haltetaste sein können, heißen alle gleich.
)";

struct Flag {
    std::uint64_t bit;
    std::string_view name;
};
constexpr std::array<Flag, 13> flags = {{{KeyFlag::shift, "Umschalt"},
                                         {KeyFlag::control, "Strg"},
                                         {KeyFlag::alternate, "Alt"},
                                         {KeyFlag::command, "Super"},
                                         {KeyFlag::leftShiftDevice, "leftShift"},
                                         {KeyFlag::rightShiftDevice, "rightShift"},
                                         {KeyFlag::leftControlDevice, "leftControl"},
                                         {KeyFlag::rightControlDevice, "rightControl"},
                                         {KeyFlag::leftOptionDevice, "leftOption"},
                                         {KeyFlag::rightOptionDevice, "rightOption"},
                                         {KeyFlag::leftCommandDevice, "leftCommand"},
                                         {KeyFlag::rightCommandDevice, "rightCommand"},
                                         {KeyFlag::fnDevice, "fn"}}};

std::uint64_t bitsOf(std::int64_t virtualKey) {
    const auto name = KeyTranslation::name(virtualKey);
    for (const auto& flag : flags) {
        if (flag.name == name) return flag.bit;
    }
    return 0;
}

std::string inWords(std::uint64_t word) {
    std::string text;
    for (const auto& flag : flags) {
        if ((word & flag.bit) != 0) text += fmt::format("{}{}", text.empty() ? "" : " ", flag.name);
    }
    return text;
}

/// Nothing where the options are wrong; no span means without an end.
std::optional<std::optional<Duration>> parse(int count, char** arguments) {
    constexpr std::string_view option = "--seconds=";
    if (count == 1) return std::optional<Duration>();
    const std::string_view argument = arguments[1];
    if (count > 2 || !argument.starts_with(option)) return std::nullopt;
    int number = 0;
    const auto* const last = argument.data() + argument.size();
    const auto [end, fault] = std::from_chars(argument.data() + option.size(), last, number);
    if (fault != std::errc() || end != last || number < 1) return std::nullopt;
    return std::optional<Duration>(std::chrono::seconds(number));
}

class Watching {
public:
    int run(std::optional<Duration> length) {
        tap_ = keyboard_.createTap(KeyEventType::maskBit(KeyEventType::keyDown) |
                                       KeyEventType::maskBit(KeyEventType::keyUp) |
                                       KeyEventType::maskBit(KeyEventType::flagsChanged),
                                   [this](const KeyEvent& event) { show(event); });
        if (!tap_) return EXIT_FAILURE;
        tap_->enable(true);
        fmt::print("{:<12}  {:<11} {:<12} {:>6}  {:<8}  {}\n", "Zeit", "", "Taste", "Nummer", "Flags", "");
        std::fflush(stdout);
        if (length) end_ = loop_.after(*length, [this] { loop_.quit(); });
        loop_.run();
        fmt::print("{} Ereignisse.\n", count_);
        return wasLost_ ? EXIT_FAILURE : EXIT_SUCCESS;
    }
    void quit() { loop_.quit(); }

private:
    void show(const KeyEvent& event) {
        if (event.type == KeyEventType::disabledByTimeout) {
            wasLost_ = true;
            loop_.quit();
            return;
        }
        ++count_;
        const bool isDown = event.type == KeyEventType::flagsChanged
                                ? (event.flags & bitsOf(event.keyCode)) != 0
                                : event.type == KeyEventType::keyDown;
        const auto now = std::chrono::system_clock::now();
        const auto milliseconds =
            std::chrono::duration_cast<std::chrono::milliseconds>(now.time_since_epoch());
        fmt::print("{:%H:%M:%S}.{:03}  {:<11} {:<12} {:>6}  {:08x}  {}{}\n",
                   fmt::localtime(std::chrono::system_clock::to_time_t(now)), milliseconds.count() % 1000,
                   isDown ? "GEDRÜCKT" : "LOSGELASSEN", KeyTranslation::name(event.keyCode), event.keyCode,
                   event.flags, inWords(event.flags), held(event.keyCode, isDown));
        std::fflush(stdout);
    }

    std::string held(std::int64_t keyCode, bool isDown) {
        const auto now = std::chrono::steady_clock::now();
        if (isDown) {
            since_[keyCode] = now;
            return {};
        }
        const auto begun = since_.find(keyCode);
        if (keyCode == VirtualKey::other || begun == since_.end()) return {};
        return fmt::format("  ({:.3f} s gehalten)", inSeconds(now - begun->second));
    }

    RunLoop loop_;
    X11Keyboard keyboard_{loop_};
    std::unique_ptr<EventTap> tap_;
    Registration end_;
    std::map<std::int64_t, Instant> since_;
    std::size_t count_ = 0;
    bool wasLost_ = false;
};

int runTool(std::optional<Duration> length) {
    ShownLog log;
    const DiagnosticsLog::Installation installation(log);
    // Ctrl+C comes to the one thread that waits for it.
    sigset_t signals;
    sigemptyset(&signals);
    for (const int number : {SIGINT, SIGTERM}) sigaddset(&signals, number);
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    Watching watching;
    std::thread waiting([&] {
        int number = 0;
        sigwait(&signals, &number);
        watching.quit();
    });
    const int result = watching.run(length);
    pthread_kill(waiting.native_handle(), SIGTERM);
    waiting.join();
    return result;
}

} // namespace
} // namespace querlin

int main(int count, char** arguments) {
    const auto length = querlin::parse(count, arguments);
    if (length) return querlin::runTool(*length);
    fmt::print(stderr, "{}", querlin::usage);
    return EXIT_FAILURE;
}
