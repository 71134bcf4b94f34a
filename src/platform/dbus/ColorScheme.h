#pragma once

#include "foundation/Lifetime.h"
#include "foundation/MainQueue.h"
#include "foundation/Registration.h"

#include <functional>
#include <memory>

namespace querlin {

class DBusThread;

/// Whether the user wants dark surfaces, as the desktop's portal reports it (org.freedesktop.appearance,
/// color-scheme). A desktop without the portal says nothing. Main thread.
class ColorScheme {
public:
    /// `changed` is called on the main thread: once the wish is known, and when it changes. Both services
    /// outlive this.
    ColorScheme(MainQueue& queue, DBusThread& buses, std::function<void(bool prefersDark)> changed);
    ~ColorScheme();
    ColorScheme(const ColorScheme&) = delete;
    ColorScheme& operator=(const ColorScheme&) = delete;

private:
    class Client;
    std::shared_ptr<Client> client_;
    Registration joined_;
    Lifetime lifetime_;
};

} // namespace querlin
