#pragma once

#include "desktop/HoldKey.h"
#include "foundation/MainQueue.h"
#include "platform/x11/OwnKeys.h"

#include <memory>
#include <string>

namespace querlin {

/// The hold key by the X server's raw events (`KeyStream`, `HoldKeyStates`). What is typed stays on the
/// stream's thread; the main thread only hears of the hold key. Main thread.
class X11HoldKey final : public HoldKey {
public:
    /// `ownKeys` are those that the program itself presses. `display` names the server (":1"); empty means
    /// that of the environment.
    explicit X11HoldKey(MainQueue& queue, std::shared_ptr<OwnKeys> ownKeys = std::make_shared<OwnKeys>(),
                        std::string display = {}) :
        queue_(queue), ownKeys_(std::move(ownKeys)), display_(std::move(display)) {}

    Registration listen(const HotkeyConfig& wanted, Handler handler) override;
    bool isReady() const override { return isReady_; }
    bool tellsOtherKeys() const override { return true; }
    std::string boundKey() const override { return isReady_ ? boundKey_ : std::string(); }

private:
    MainQueue& queue_;
    std::shared_ptr<OwnKeys> ownKeys_;
    const std::string display_;
    bool isReady_ = false;
    std::string boundKey_;
};

} // namespace querlin
