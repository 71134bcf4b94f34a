#include "platform/dbus/BusFileManager.h"

#include "platform/dbus/BusCalls.h"
#include "platform/dbus/DBusThread.h"

namespace querlin {

namespace {

constexpr const char* service = "org.freedesktop.FileManager1";
/// It may have to be started first.
constexpr Duration longestAnswer = std::chrono::seconds(10);

} // namespace

/// The buses' thread.
class BusFileManager::Client final : public BusClient {
public:
    void connected(BusKind kind, sd_bus* bus) override {
        if (kind == BusKind::session) bus_ = bus;
    }
    void lost(BusKind kind) override {
        if (kind != BusKind::session) return;
        asking_.reset();
        bus_ = nullptr;
        fail();
    }
    void show(const std::string& url, std::function<void()> failed) {
        failed_ = std::move(failed); // In place of a former one, which is still under way.
        asking_ = bus_ ? ask(url) : nullptr;
        if (!asking_) fail();
    }

private:
    BusSlot ask(const std::string& url) {
        constexpr int countOfFiles = 1;
        constexpr auto startupIdentifier = "";
        const auto call =
            BusCalls::message(bus_, {service, "/org/freedesktop/FileManager1", service, "ShowItems"}, "ass",
                              countOfFiles, url.c_str(), startupIdentifier);
        return BusCalls::send(bus_, call, longestAnswer, [this](sd_bus_message* answer) {
            if (!BusCalls::errorName(answer).empty()) fail();
            failed_ = nullptr;
        });
    }
    void fail() {
        if (const auto failed = std::exchange(failed_, nullptr)) failed();
    }

    sd_bus* bus_ = nullptr;
    BusSlot asking_;
    std::function<void()> failed_;
};

BusFileManager::BusFileManager(MainQueue& queue, DBusThread& buses) :
    queue_(queue), buses_(buses), client_(std::make_shared<Client>()), joined_(buses.add(client_)) {}

BusFileManager::~BusFileManager() = default;

void BusFileManager::show(std::string url, std::function<void()> failed) {
    buses_.post([client = client_, url = std::move(url),
                 onMain = lifetime_.onMain(queue_, std::move(failed))] { client->show(url, onMain); });
}

} // namespace querlin
