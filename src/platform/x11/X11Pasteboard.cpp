#include "platform/x11/X11Pasteboard.h"

#include "foundation/OneShot.h"
#include "platform/x11/SelectionForms.h"
#include "state/DiagnosticsLog.h"

#include <iterator>

namespace querlin {

namespace {

constexpr Duration longestWrite = std::chrono::milliseconds(300);

} // namespace

Task<PasteboardSnapshot> X11Pasteboard::capture() {
    const OneShot<PasteboardSnapshot> captured(queue_);
    auto send = [sender = captured.sender()](PasteboardSnapshot snapshot) {
        sender.send(std::move(snapshot));
    };
    thread_.capture(std::move(send));
    auto snapshot = co_await captured;
    co_return snapshot;
}

std::shared_ptr<SelectionOffer> X11Pasteboard::put(PasteboardSnapshot::Item item) {
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

void X11Pasteboard::write(PasteboardSnapshot contents) {
    PasteboardSnapshot::Item all;
    for (auto& item : contents.items)
        all.insert(all.end(), std::make_move_iterator(item.begin()), std::make_move_iterator(item.end()));
    put(std::move(all));
}

std::shared_ptr<PasteboardOffer> X11Pasteboard::writeText(std::string_view text, ClipboardHistory history) {
    return put(SelectionForms::ofText(text, history));
}

} // namespace querlin
