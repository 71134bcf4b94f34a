#pragma once

#include "desktop/Clipboard.h"
#include "foundation/MainQueue.h"
#include "platform/x11/ClipboardThread.h"

#include <string>

namespace querlin {

/// The clipboard of the X server (the selection CLIPBOARD). X keeps no contents: who has copied hands them
/// out to each who asks, and so do we, on a thread of the clipboard's own. When this goes, a clipboard
/// manager is asked to keep what we offer, but never a text that histories are to skip. Main thread.
class X11Clipboard final : public Clipboard {
public:
    /// `display` names the server (":1"); empty means that of the environment.
    explicit X11Clipboard(MainQueue& queue, std::string display = {}) :
        queue_(queue), thread_(std::move(display)) {}

    Task<ClipboardSnapshot> capture() override;
    /// Several items become one, for there is only one here. Waits 300 ms at most.
    void write(ClipboardSnapshot contents) override;
    std::shared_ptr<ClipboardOffer> writeText(std::string_view text, ClipboardHistory history) override;

private:
    std::shared_ptr<SelectionOffer> put(ClipboardSnapshot::Item item);

    MainQueue& queue_;
    ClipboardThread thread_;
};

} // namespace querlin
