#pragma once

#include "desktop/Clipboard.h"
#include "foundation/Time.h"

#include <algorithm>
#include <atomic>
#include <map>

#include <xcb/xcb.h>

namespace querlin {

/// What has become of a text on the clipboard: written by the clipboard's thread, read by the main thread.
class SelectionOffer final : public ClipboardOffer {
public:
    bool isCurrent() const override { return isCurrent_; }
    std::uint64_t completedReads() const override { return completedReads_; }
    bool isBeingRead() const override { return transfers_ > 0 || now() < lookedAtUntil_; }

    // The clipboard's thread
    void begin() { isCurrent_ = true; }
    void lose() { isCurrent_ = false; }
    /// A program has asked which forms there are; most ask for the text next.
    void lookBegun(xcb_window_t requestor) {
        lookers_[requestor] = now() + Instant::duration(longestLook).count();
        countLookers();
    }
    /// It has asked for the text, or for what tells it to leave the text alone.
    void lookEnded(xcb_window_t requestor) {
        lookers_.erase(requestor);
        countLookers();
    }
    void textTaken() { ++completedReads_; }
    void transferBegun() { ++transfers_; }
    void transferEnded() { --transfers_; }

private:
    static constexpr Duration longestLook = std::chrono::seconds(2);

    static Instant::rep now() { return std::chrono::steady_clock::now().time_since_epoch().count(); }
    void countLookers() {
        Instant::rep last = 0;
        for (const auto& [requestor, until] : lookers_) last = std::max(last, until);
        lookedAtUntil_ = last;
    }

    std::atomic<bool> isCurrent_ = false;
    std::atomic<std::uint64_t> completedReads_ = 0;
    std::atomic<int> transfers_ = 0;
    std::atomic<Instant::rep> lookedAtUntil_ = 0;
    std::map<xcb_window_t, Instant::rep> lookers_; ///< of the clipboard's thread alone
};

} // namespace querlin
