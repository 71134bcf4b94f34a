#pragma once

#include "desktop/FileManager.h"
#include "foundation/Lifetime.h"
#include "foundation/MainQueue.h"
#include "foundation/Registration.h"

#include <memory>

namespace querlin {

class DBusThread;

/// The file manager that the session bus knows, or can start (freedesktop.org, File Manager D-Bus Interface).
class BusFileManager final : public FileManager {
public:
    /// Both outlive this.
    BusFileManager(MainQueue& queue, DBusThread& buses);
    ~BusFileManager() override;
    BusFileManager(const BusFileManager&) = delete;
    BusFileManager& operator=(const BusFileManager&) = delete;

    void show(std::string url, std::function<void()> failed) override;

private:
    class Client;
    MainQueue& queue_;
    DBusThread& buses_;
    std::shared_ptr<Client> client_;
    Registration joined_;
    Lifetime lifetime_;
};

} // namespace querlin
