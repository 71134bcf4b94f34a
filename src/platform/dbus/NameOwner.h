#pragma once

#include "platform/dbus/BusCalls.h"

#include <functional>
#include <string>

namespace querlin {

/// Follows who owns a well-known name of a bus, so that signals of that service can be told from those that
/// somebody else sends under its interface. The buses' thread.
class NameOwner {
public:
    /// `changed` is called when an owner is known, when it has gone, and once for a name without an owner.
    NameOwner(std::string name, std::function<void()> changed) :
        name_(std::move(name)), changed_(std::move(changed)) {}

    /// Signals that are listened to after this are never earlier than the knowledge of who sends them.
    void connected(sd_bus* bus);
    void lost();

    const std::string& name() const { return name_; }
    bool isOwned() const { return !owner_.empty(); }
    /// Whether the owner of the name has sent this.
    bool hasSent(sd_bus_message* message) const;

private:
    void setOwner(std::string owner);

    std::string name_;
    std::function<void()> changed_;
    std::string owner_; ///< the unique name of its connection
    BusSlot listening_;
    BusSlot asking_;
};

} // namespace querlin
