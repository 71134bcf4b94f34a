#pragma once

#include "foundation/Lifetime.h"
#include "foundation/MainQueue.h"
#include "foundation/Published.h"
#include "foundation/Registration.h"

#include <memory>
#include <optional>

namespace querlin {

class DBusThread;

/// Whether a host of StatusNotifierItems is registered on the session bus (freedesktop.org,
/// StatusNotifierItem): a panel that draws the symbols of programs. Reported by the bus and by the watcher of
/// the items; nobody is waited for. Main thread.
class NotifierHostWatch {
public:
    /// Both outlive this.
    NotifierHostWatch(MainQueue& queue, DBusThread& buses);
    ~NotifierHostWatch();
    NotifierHostWatch(const NotifierHostWatch&) = delete;
    NotifierHostWatch& operator=(const NotifierHostWatch&) = delete;

    /// Nothing as long as the watcher of the items hasn't answered.
    const Published<std::optional<bool>>& isThere() const { return isThere_; }

private:
    class Client;
    Published<std::optional<bool>> isThere_;
    std::shared_ptr<Client> client_;
    Registration joined_;
    Lifetime lifetime_;
};

} // namespace querlin
