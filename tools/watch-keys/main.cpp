// A developer's look at the hold key, as the program hears it.

#include "shared/ShownLog.h"

#include "foundation/RunLoop.h"
#include "platform/x11/X11HoldKey.h"

#include <charconv>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <thread>

#include <fmt/chrono.h>
#include <fmt/format.h>
#include <pthread.h>

namespace querlin {
namespace {

constexpr std::string_view usage = R"(watch-keys [--seconds=N] [TASTE]
  Zeigt, was von der Diktattaste zu hören ist, bis zu Strg+C oder N Sekunden lang. Andere Tasten kommen nur als
  solche vor, während sie gehalten wird. TASTE: rightControl (sonst), rightOption (AltGr), rightCommand,
  rightShift, fn, leftOption oder optionSpace, controlSpace, commandShiftD.
)";

struct Options {
    HotkeyConfig key;
    std::optional<Duration> length;
};

bool readKey(std::string_view name, HotkeyConfig& key) {
    if (const auto modifier = fromRawValue<ModifierKey>(name)) {
        key.modifier = *modifier;
    } else if (const auto combo = fromRawValue<ComboHotkey>(name)) {
        key.mode = HotkeyConfig::Mode::holdCombo;
        key.combo = *combo;
    } else {
        return false;
    }
    return true;
}

std::optional<Options> parse(int count, char** arguments) {
    constexpr std::string_view seconds = "--seconds=";
    Options options;
    for (int i = 1; i < count; ++i) {
        const std::string_view argument = arguments[i];
        if (!argument.starts_with(seconds)) {
            if (!readKey(argument, options.key)) return std::nullopt;
            continue;
        }
        int number = 0;
        const auto* const last = argument.data() + argument.size();
        const auto [end, fault] = std::from_chars(argument.data() + seconds.size(), last, number);
        if (fault != std::errc() || end != last || number < 1) return std::nullopt;
        options.length = std::chrono::seconds(number);
    }
    return options;
}

std::string_view inWords(HoldKeyEvent::Kind kind) {
    switch (kind) {
    case HoldKeyEvent::Kind::ready:
        return "BEREIT";
    case HoldKeyEvent::Kind::pressed:
        return "GEDRÜCKT";
    case HoldKeyEvent::Kind::released:
        return "LOSGELASSEN";
    case HoldKeyEvent::Kind::otherKeyPressed:
        return "andere Taste";
    case HoldKeyEvent::Kind::lost:
        return "VERLOREN";
    }
    return {};
}

class Watching {
public:
    int run(const Options& options) {
        const auto listening =
            holdKey_.listen(options.key, [this](const HoldKeyEvent& event) { show(event); });
        fmt::print("{}\n", options.key.displayName());
        std::fflush(stdout);
        Registration end;
        if (options.length) end = loop_.after(*options.length, [this] { loop_.quit(); });
        loop_.run();
        return holdKey_.isReady() ? EXIT_SUCCESS : EXIT_FAILURE;
    }
    void quit() { loop_.quit(); }

private:
    void show(const HoldKeyEvent& event) {
        const auto now = std::chrono::system_clock::now();
        const auto milliseconds =
            std::chrono::duration_cast<std::chrono::milliseconds>(now.time_since_epoch());
        fmt::print("{:%H:%M:%S}.{:03}  {}", fmt::localtime(std::chrono::system_clock::to_time_t(now)),
                   milliseconds.count() % 1000, inWords(event.kind));
        if (event.kind == HoldKeyEvent::Kind::pressed) pressedAt_ = event.at;
        if (event.kind == HoldKeyEvent::Kind::released)
            fmt::print("  ({:.3f} s gehalten)", inSeconds(event.at - pressedAt_));
        fmt::print("\n");
        std::fflush(stdout);
    }

    RunLoop loop_;
    X11HoldKey holdKey_{loop_};
    Instant pressedAt_;
};

int runTool(const Options& options) {
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
    const int result = watching.run(options);
    pthread_kill(waiting.native_handle(), SIGTERM);
    waiting.join();
    return result;
}

} // namespace
} // namespace querlin

int main(int count, char** arguments) {
    const auto options = querlin::parse(count, arguments);
    if (options) return querlin::runTool(*options);
    fmt::print(stderr, "{}", querlin::usage);
    return EXIT_FAILURE;
}
