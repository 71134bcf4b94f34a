#include "platform/x11/X11Clipboard.h"

#include "foundation/OneShot.h"
#include "platform/x11/SelectionForms.h"
#include "state/DiagnosticsLog.h"

#include <iterator>

namespace querlin {

namespace {

constexpr Duration longestWrite = std::chrono::milliseconds(300);

} // namespace

Task<ClipboardSnapshot> X11Clipboard::capture() {
    const OneShot<ClipboardSnapshot> captured(queue_);
    auto send = [sender = captured.sender()](ClipboardSnapshot snapshot) {
        sender.send(std::move(snapshot));
    };
    thread_.capture(std::move(send));
    auto snapshot = co_await captured;
    co_return snapshot;
}

std::shared_ptr<SelectionOffer> X11Clipboard::put(ClipboardSnapshot::Item item) {
    const auto history = SelectionForms::historyOf(item);
    auto offer = std::make_shared<SelectionOffer>();
    auto done = thread_.write({std::move(item), history, offer, {}});
    if (done.wait_for(longestWrite) != std::future_status::ready) {
        DiagnosticsLog::note("clipboard", "Die Zwischenablage lässt auf sich warten.");
    } else if (!done.get()) {
        DiagnosticsLog::note("clipboard", "Die Zwischenablage ließ sich nicht beschreiben.");
    }
    return offer;
}

void X11Clipboard::write(ClipboardSnapshot contents) {
    ClipboardSnapshot::Item all;
    for (auto& item : contents.items)
        all.insert(all.end(), std::make_move_iterator(item.begin()), std::make_move_iterator(item.end()));
    put(std::move(all));
}

std::shared_ptr<ClipboardOffer> X11Clipboard::writeText(std::string_view text, ClipboardHistory history) {
    return put(SelectionForms::ofText(text, history));
}

} // namespace querlin
