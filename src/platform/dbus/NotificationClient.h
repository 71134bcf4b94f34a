#pragma once

#include "desktop/Notifications.h"
#include "platform/dbus/BusCalls.h"
#include "platform/dbus/DBusThread.h"
#include "platform/dbus/NameOwner.h"

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>

namespace querlin {

/// Speaks with the notification service. What it can is asked for once for each owner of its name, before
/// the first notification, which waits for the answer. The buses' thread.
class NotificationClient final : public BusClient, public std::enable_shared_from_this<NotificationClient> {
public:
    NotificationClient(DBusThread& buses, Duration longestWait);

    struct Notification {
        std::string title;
        std::string body;
    };
    void show(Notification notification, NotificationService::Failure failure);
    void askWhetherPossible(const NotificationService::AuthorizationAnswer& answer);

    void connected(BusKind kind, sd_bus* bus) override;
    void lost(BusKind kind) override;
    void leaving() override;

private:
    /// A question or a notification under way. Taken out at its end, so it has one only: an answer, an error,
    /// or the end of the wait.
    struct Pending {
        std::function<void(std::string)> fail;
        std::function<void(bool)> decide; ///< of a question
        std::optional<Notification> unsent;
        BusSlot slot;
    };
    struct Abilities {
        bool readsMarkup = false;
        bool makesSound = false;
    };

    std::uint64_t begin(std::function<void(std::string)> fail);
    void fail(std::uint64_t number, const std::string& reason);
    void decide(std::uint64_t number, bool isPossible);
    void askTheBus(std::uint64_t number, const char* member, const char* argument,
                   BusCalls::Handler answered);

    void ownerChanged();
    void askForAbilities();
    void abilitiesAnswered(sd_bus_message* answer);
    void send(std::uint64_t number);
    void sendAll();
    BusMessage messageFor(const Notification& notification) const;
    void noteAbsence();

    DBusThread& buses_;
    const Duration longestWait_;
    sd_bus* bus_ = nullptr;
    NameOwner service_;
    BusSlot asking_; ///< for the abilities
    std::optional<Abilities> abilities_;
    std::map<std::uint64_t, Pending> pending_;
    std::uint64_t lastNumber_ = 0;
    bool isAbsenceNoted_ = false;
};

} // namespace querlin
