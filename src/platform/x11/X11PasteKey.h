#pragma once

#include "desktop/PasteKey.h"
#include "foundation/MainQueue.h"
#include "platform/x11/KeyboardMap.h"
#include "platform/x11/OwnKeys.h"
#include "platform/x11/XcbConnection.h"

#include <memory>
#include <string>

namespace querlin {

/// Presses keys by XTest, as if they came from a keyboard; whatever has the focus gets them. The meaning of
/// the keys is asked for at each press, so a layout may change at any time. Main thread.
class X11PasteKey final : public PasteKey {
public:
    /// `ownKeys` gets to know what is pressed. `display` names the server (":1"); empty means that of the
    /// environment.
    explicit X11PasteKey(MainQueue& queue, std::shared_ptr<OwnKeys> ownKeys = std::make_shared<OwnKeys>(),
                         std::string display = {}) :
        queue_(queue), ownKeys_(std::move(ownKeys)), display_(std::move(display)) {}

    Task<> awaitFreeKeyboard() override;
    /// What is still held is released in the user's place.
    Task<bool> press(PasteShortcut shortcut) override;

private:
    bool connect();
    std::optional<KeyboardMap> map();
    std::vector<std::uint8_t> heldAmong(const std::vector<std::uint8_t>& keyCodes);
    void send(std::uint8_t keyCode, bool isDown) const;
    void send(const KeyChord& chord) const;

    MainQueue& queue_;
    std::shared_ptr<OwnKeys> ownKeys_;
    const std::string display_;
    std::unique_ptr<XcbConnection> connection_;
};

} // namespace querlin
