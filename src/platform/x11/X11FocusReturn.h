#pragma once

#include "desktop/FocusReturn.h"
#include "foundation/MainQueue.h"
#include "foundation/WakeUp.h"
#include "platform/x11/FocusHistory.h"

#include <atomic>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace querlin {

/// Follows which window is in front, on a connection and a thread of its own, and brings the last one of
/// another program back there. Main thread.
class X11FocusReturn final : public FocusReturn {
public:
    /// `display` names the server (":1"); empty means that of the environment.
    explicit X11FocusReturn(MainQueue& queue, std::string display = {});
    ~X11FocusReturn() override;
    X11FocusReturn(const X11FocusReturn&) = delete;
    X11FocusReturn& operator=(const X11FocusReturn&) = delete;

    Task<bool> giveBack() override;

private:
    void run();
    void serve(FocusHistory& history);
    void refuseWishes();
    std::vector<FocusWish> takeWishes();

    MainQueue& queue_;
    const std::string display_;
    WakeUp wakeUp_;
    std::mutex lock_;
    std::vector<FocusWish> wishes_; ///< under the lock
    std::atomic<bool> isEnding_ = false;
    std::thread thread_;
};

} // namespace querlin
