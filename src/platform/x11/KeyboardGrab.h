#pragma once

#include "platform/x11/XcbAtoms.h"

#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

namespace querlin {

/// Whether another program has the keyboard for itself, as password dialogs and menus do. Any thread.
class KeyboardGrab {
public:
    /// `display` names the server (":1"); empty means that of the environment.
    explicit KeyboardGrab(std::string display = {}) : display_(std::move(display)) {}

    /// The server tells it only to somebody who wants the keyboard too; where nobody has it, that is us for
    /// some microseconds. False without a server.
    bool isHeldByOther();
    /// The process that has it, most likely: nobody tells, but it should be the one in front. Nothing if
    /// nobody has the keyboard for itself.
    std::optional<std::int32_t> likelyOwner();

private:
    XcbConnection* connect();
    bool isGrabbed(XcbConnection& connection) const;

    const std::string display_;
    std::mutex mutex_; ///< guards what follows
    std::unique_ptr<XcbConnection> connection_;
    std::unique_ptr<XcbAtoms> atoms_;
};

} // namespace querlin
