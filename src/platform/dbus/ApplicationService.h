#pragma once

#include "foundation/Lifetime.h"
#include "foundation/MainQueue.h"
#include "foundation/Registration.h"
#include "foundation/Time.h"

#include <functional>
#include <memory>
#include <string>

namespace querlin {

class DBusThread;

/// The program's name on the session bus, and org.freedesktop.Application (freedesktop.org, Desktop
/// Entry 1.5, D-Bus Activation) at that name: who starts the program again reaches the one that runs. Main
/// thread.
class ApplicationService {
public:
    /// `name` is that of the desktop entry; `onActivate` is called on the main thread. Both services outlive
    /// this.
    ApplicationService(MainQueue& queue, DBusThread& buses, std::string name,
                       std::function<void()> onActivate);
    ~ApplicationService();
    ApplicationService(const ApplicationService&) = delete;
    ApplicationService& operator=(const ApplicationService&) = delete;

    /// Calls the program of that name to attention, from another process, and waits for its answer. False if
    /// there is no bus or nobody answers in time.
    static bool activateOther(const std::string& name, Duration longestWait);

private:
    class Client;
    std::shared_ptr<Client> client_;
    Registration joined_;
    Lifetime lifetime_;
};

} // namespace querlin
