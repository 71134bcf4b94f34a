#include "Cases.h"
#include "Keys.h"

#include "report/Measuring.h"

#include "desktop/HotkeyManager.h"
#include "platform/x11/X11HoldKey.h"
#include "support/Desktop.h"

namespace querlin::bench {

namespace {

constexpr int presses = 500;
constexpr double limit = 0.002;

} // namespace

void runPressing(Report& report) {
    RunLoop loop;
    Eyes eyes(loop);
    X11HoldKey holdKey(loop);
    HotkeyManager hotkey(loop, holdKey, eyes.permissions, HotkeyConfig(), "");
    std::vector<double> waits;
    Stopwatch sent;
    hotkey.setCallbacks([&] { waits.push_back(sent.seconds()); }, [] {}, [] {});
    if (!hotkey.start()) {
        report.note("the keyboard can't be listened to");
        return;
    }
    Keys keys;
    serveUntil(loop, [&] { return holdKey.isReady(); }, std::chrono::seconds(5));
    for (std::size_t i = 0; i < presses; ++i) {
        sent = Stopwatch();
        keys.send(Keys::rightControl, true);
        serveUntil(loop, [&] { return waits.size() > i; }, std::chrono::seconds(1));
        keys.send(Keys::rightControl, false);
        serve(loop, std::chrono::milliseconds(2));
    }
    if (waits.size() != presses) report.disagreement("presses are missing");
    report.section("from the key to its callback, against the limit");
    report.times("median", median(waits), limit, {});
    report.times("one of a hundred", percentile(waits, 0.99), limit, Bar::atLeast(1));
}

} // namespace querlin::bench
