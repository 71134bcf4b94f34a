#include "platform/dbus/ApplicationService.h"

#include "platform/dbus/BusCalls.h"
#include "platform/dbus/DBusThread.h"
#include "state/DiagnosticsLog.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <thread>

#include <fmt/format.h>

namespace querlin {

namespace {

constexpr const char* interfaceName = "org.freedesktop.Application";

/// "local.mandolan.querlin" -> "/local/mandolan/querlin"
std::string pathOf(std::string name) {
    std::ranges::replace(name, '.', '/');
    return "/" + name;
}

bool activate(sd_bus* bus, const std::string& name) {
    const auto path = pathOf(name);
    sd_bus_message* made = nullptr;
    if (sd_bus_message_new_method_call(bus, &made, name.c_str(), path.c_str(), interfaceName, "Activate") < 0)
        return false;
    const BusMessage call(made);
    sd_bus_message_set_auto_start(call.get(), 0);
    sd_bus_message_append(call.get(), "a{sv}", 0);
    constexpr std::uint64_t longestInMicroseconds = 1'000'000;
    return sd_bus_call(bus, call.get(), longestInMicroseconds, nullptr, nullptr) >= 0;
}

} // namespace

/// The buses' thread.
class ApplicationService::Client final : public BusClient {
public:
    Client(std::string name, std::function<void()> activated) :
        name_(std::move(name)), path_(pathOf(name_)), activated_(std::move(activated)) {}

    void connected(BusKind kind, sd_bus* bus) override {
        if (kind != BusKind::session) return;
        sd_bus_slot* slot = nullptr;
        if (sd_bus_add_object(bus, &slot, path_.c_str(), answerCall, this) >= 0) object_.reset(slot);
        constexpr std::uint32_t doNotQueue = 4;
        const auto request =
            BusCalls::message(bus, BusCalls::ofTheBus("RequestName"), "su", name_.c_str(), doNotQueue);
        asking_ = BusCalls::send(bus, request, std::chrono::seconds(5), [](sd_bus_message* answer) {
            std::uint32_t result = 0;
            constexpr std::uint32_t owner = 1;
            if (sd_bus_message_read_basic(answer, SD_BUS_TYPE_UINT32, &result) <= 0 || result != owner)
                DiagnosticsLog::note("app", "Der Name auf dem Sitzungsbus ist nicht zu haben.");
        });
    }

    void lost(BusKind kind) override {
        if (kind != BusKind::session) return;
        asking_.reset();
        object_.reset();
    }

private:
    static int answerCall(sd_bus_message* call, void* self, sd_bus_error* /*error*/) {
        constexpr std::array<const char*, 3> members = {"Activate", "Open", "ActivateAction"};
        const bool isKnown = std::ranges::any_of(members, [call](const char* member) {
            return sd_bus_message_is_method_call(call, interfaceName, member) > 0;
        });
        if (!isKnown) return 0; // The library answers that there is no such method.
        static_cast<Client*>(self)->activated_();
        return sd_bus_reply_method_return(call, "");
    }

    const std::string name_;
    const std::string path_;
    const std::function<void()> activated_;
    BusSlot object_;
    BusSlot asking_;
};

ApplicationService::ApplicationService(MainQueue& queue, DBusThread& buses, std::string name,
                                       std::function<void()> onActivate) {
    client_ = std::make_shared<Client>(std::move(name), lifetime_.onMain(queue, std::move(onActivate)));
    joined_ = buses.add(client_);
}

ApplicationService::~ApplicationService() = default;

bool ApplicationService::activateOther(const std::string& name, Duration longestWait) {
    sd_bus* opened = nullptr;
    if (sd_bus_open_user(&opened) < 0) return false;
    const BusConnection bus(opened);
    const auto deadline = std::chrono::steady_clock::now() + longestWait;
    while (!activate(bus.get(), name)) { // The other one may be on its way up still.
        if (std::chrono::steady_clock::now() > deadline) return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
    }
    return true;
}

} // namespace querlin
