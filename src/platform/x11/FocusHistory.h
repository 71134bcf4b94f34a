#pragma once

#include "foundation/OneShot.h"
#include "foundation/Time.h"
#include "platform/x11/WindowFocus.h"

#include <memory>
#include <vector>

namespace querlin {

/// The wish that the last window of another program gets the keyboard, as long as somebody waits for it.
struct FocusWish {
    OneShot<bool>::Sender answer;
    Instant deadline;
};

/// Remembers, for the life of one connection, which window of another program had the keyboard last, and
/// brings it back there. On the connection's thread.
class FocusHistory {
public:
    explicit FocusHistory(std::unique_ptr<XcbConnection> connection);
    ~FocusHistory();
    FocusHistory(const FocusHistory&) = delete;
    FocusHistory& operator=(const FocusHistory&) = delete;

    int descriptor() const { return connection_->descriptor(); }
    bool isLost() const { return connection_->isLost(); }
    /// Nobody tells of a change where no manager is: then it is looked for from time to time.
    bool mustLookByItself() const { return !focus_.isManaged(); }

    void add(std::vector<FocusWish> wishes);
    /// Handles the server's events, and fulfils the wishes that can be.
    void serve();

private:
    bool takeEvents();
    void look();
    void remember(xcb_window_t window);
    void askForTime();
    void activate(xcb_timestamp_t time);
    void answerAll(bool isGivenBack);

    std::unique_ptr<XcbConnection> connection_;
    XcbAtoms atoms_;
    WindowFocus focus_;
    xcb_window_t clock_; ///< never shown: its changes bring the server's time
    xcb_window_t last_ = XCB_WINDOW_NONE;
    std::vector<FocusWish> wishes_;
};

} // namespace querlin
