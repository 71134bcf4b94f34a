#include "Cases.h"
#include "Keys.h"

#include "report/Measuring.h"

#include "desktop/ClipboardInserter.h"
#include "desktop/HotkeyManager.h"
#include "foundation/ThreadPool.h"
#include "platform/x11/X11Clipboard.h"
#include "platform/x11/X11HoldKey.h"
#include "platform/x11/X11PasteKey.h"
#include "support/Desktop.h"
#include "support/DictationWorld.h"

namespace querlin::bench {

namespace {

constexpr int dictations = 40;
constexpr double limit = 0.010;
/// The time that an insertion waits before it presses.
constexpr double fixedWait = 0.050;

/// Records when it was pressed.
class WatchedPasteKey final : public PasteKey {
public:
    explicit WatchedPasteKey(MainQueue& queue) : key_(queue) {}
    Task<> awaitFreeKeyboard() override { return key_.awaitFreeKeyboard(); }
    Task<bool> press(PasteShortcut shortcut) override {
        const bool pressed = co_await key_.press(shortcut);
        onPressed();
        co_return pressed;
    }

    std::function<void()> onPressed = [] {};

private:
    X11PasteKey key_;
};

} // namespace

void runDelivery(Report& report) {
    RunLoop loop;
    SystemClock clock;
    ThreadPool pool(1);
    const Runtime runtime{loop, clock, pool};
    const TempFolder folder;
    Eyes eyes(loop);
    X11HoldKey holdKey(loop);
    X11Clipboard clipboard(loop);
    WatchedPasteKey pasteKey(loop);
    HotkeyManager hotkey(loop, holdKey, eyes.permissions, HotkeyConfig(), "");
    ClipboardInserter inserter(
        {runtime, eyes.permissions, eyes.accessibility, eyes.workspace, clipboard, pasteKey});
    FakeSurroundings with(runtime, folder.path());
    with.services.script.delay = Duration::zero();
    with.services.script.result = "Frau Meier Komma geboren am dritten März Punkt";
    const auto fakes = with.collaborators();
    DictationController controller(
        runtime, {fakes.settings, fakes.statistics, fakes.history, fakes.rescue, fakes.notifier,
                  fakes.windows, fakes.sounds, hotkey, eyes.permissions, eyes.detector, inserter,
                  fakes.correctionWatcher, fakes.systemSignals, fakes.recorder, fakes.audioDevices,
                  fakes.transcribers, fakes.vocabulary, fakes.pipeline});
    controller.start();
    const Program editor({"mousepad", "--disable-server"});
    const auto isReady = [&] {
        return eyes.detector.capture().field == DictationContext::FieldKind::multiLine;
    };
    serveUntil(loop, isReady, std::chrono::seconds(20));

    Keys keys;
    Stopwatch released;
    std::vector<double> waits;
    pasteKey.onPressed = [&] { waits.push_back(released.seconds() - fixedWait); };
    for (std::size_t i = 0; i < dictations; ++i) {
        keys.send(Keys::rightControl, true);
        serve(loop, std::chrono::milliseconds(600));
        released = Stopwatch();
        keys.send(Keys::rightControl, false);
        serveUntil(loop, [&] { return waits.size() > i; }, std::chrono::seconds(5));
        serveUntil(
            loop, [&] { return controller.phase().get().is(DictationPhase::Kind::idle); },
            std::chrono::seconds(5));
    }
    if (waits.size() != dictations) report.disagreement("dictations are missing");
    report.section("from letting go to the shortcut, without recogniser and fixed wait, against the limit");
    report.times("median", median(waits), limit, {});
    report.times("one of a hundred", percentile(waits, 0.99), limit, Bar::atLeast(1));
    controller.shutdown();
}

} // namespace querlin::bench
