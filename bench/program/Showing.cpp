#include "../desktop/Keys.h"
#include "Cases.h"
#include "Running.h"
#include "Tray.h"

#include <thread>

namespace querlin::bench {

namespace {

constexpr int presses = 30;
constexpr double limit = 0.050;
constexpr auto longest = std::chrono::milliseconds(3000);
constexpr auto name = "Querlin Overlay";
/// Longer than a tap that is taken for a mistake, so that each press is a dictation.
constexpr auto held = std::chrono::milliseconds(600);
constexpr auto betweenPresses = std::chrono::milliseconds(700);

struct Seen {
    std::vector<double> mapped;
    std::vector<double> painted;
};

/// A part in the middle of the overlay, which fills it.
Place middleOf(const Place& overlay) {
    constexpr std::uint16_t width = 64;
    constexpr std::uint16_t height = 8;
    return {static_cast<std::int16_t>(overlay.x + ((overlay.width - width) / 2)),
            static_cast<std::int16_t>(overlay.y + ((overlay.height - height) / 2)), width, height};
}

bool goes(const Screen& screen, xcb_window_t overlay) {
    const bool hasGone = eventually([&] { return !screen.isShown(overlay); });
    std::this_thread::sleep_for(betweenPresses);
    return hasGone;
}

/// Where the overlay comes up, learnt from a first press.
std::optional<xcb_window_t> firstOverlay(const Screen& screen, Keys& keys) {
    std::optional<xcb_window_t> overlay;
    keys.send(Keys::rightControl, true);
    const bool isThere = eventually([&] {
        overlay = screen.find(name);
        return overlay && screen.isShown(*overlay);
    });
    std::this_thread::sleep_for(held);
    keys.send(Keys::rightControl, false);
    return isThere && goes(screen, *overlay) ? overlay : std::nullopt;
}

bool press(const Screen& screen, xcb_window_t overlay, const Place& place, Keys& keys, Seen& seen) {
    const auto before = screen.dots(place);
    const auto end = std::chrono::steady_clock::now() + longest;
    const Stopwatch pressed;
    keys.send(Keys::rightControl, true);
    bool isMapped = false;
    bool isPainted = false;
    while (!(isMapped && isPainted) && std::chrono::steady_clock::now() < end) {
        if (!isMapped && screen.isShown(overlay)) {
            isMapped = true;
            seen.mapped.push_back(pressed.seconds());
        }
        if (!isPainted && screen.dots(place) != before) {
            isPainted = true;
            seen.painted.push_back(pressed.seconds());
        }
    }
    std::this_thread::sleep_for(held);
    keys.send(Keys::rightControl, false);
    return goes(screen, overlay) && isMapped && isPainted;
}

} // namespace

void runShowing(Figures& figures) {
    figures.section("from the hold key to the overlay | the limit");
    Tray tray; // Without one the program would show a window of its own.
    const RunningProgram program;
    if (!program.comesUp(tray)) {
        figures.failed("the program doesn't come up");
        return;
    }
    const Program editor({"mousepad", "--disable-server"}); // Somebody to dictate to.
    std::this_thread::sleep_for(std::chrono::seconds(3));   // The overlay is prepared half a second later.
    const Screen screen;
    Keys keys;
    const auto overlay = firstOverlay(screen, keys);
    if (!overlay) {
        figures.failed("no overlay appears");
        return;
    }
    const auto place = middleOf(screen.place(*overlay));
    Seen seen;
    for (int i = 0; i < presses; ++i) {
        if (!press(screen, *overlay, place, keys, seen)) {
            figures.failed("an overlay doesn't appear, or doesn't go");
            return;
        }
    }
    figures.times("its window is there, median", median(seen.mapped), limit, Bar::atLeast(1));
    figures.times("its window is there, worst of 30", percentile(seen.mapped, 1), limit, Bar::atLeast(1));
    figures.times("to be seen on the screen, median", median(seen.painted), limit, Bar::atLeast(1));
    figures.times("to be seen on the screen, worst of 30", percentile(seen.painted, 1), limit,
                  Bar::atLeast(1));
}

} // namespace querlin::bench
