#include "platform/dbus/NotificationClient.h"

#include "platform/dbus/NotificationText.h"
#include "state/DiagnosticsLog.h"
#include "state/Product.h"

#include <string_view>

#include <fmt/format.h>

namespace querlin {

namespace {

constexpr const char* serviceName = "org.freedesktop.Notifications";
constexpr std::string_view noBus = "Der Sitzungsbus ist nicht erreichbar.";
constexpr std::string_view noService = "Es gibt keinen Mitteilungsdienst.";
constexpr std::string_view noAnswer = "Der Mitteilungsdienst antwortet nicht.";

constexpr BusMethod ofTheService(const char* member) {
    return {serviceName, "/org/freedesktop/Notifications", serviceName, member};
}

bool isAbsence(std::string_view error) {
    return error == SD_BUS_ERROR_SERVICE_UNKNOWN || error == SD_BUS_ERROR_NAME_HAS_NO_OWNER ||
           error.starts_with("org.freedesktop.DBus.Error.Spawn.");
}

bool isSilence(std::string_view error) {
    return error == SD_BUS_ERROR_NO_REPLY || error == SD_BUS_ERROR_TIMEOUT;
}

/// Whether the list of texts that an answer is has this one.
bool lists(sd_bus_message* answer, std::string_view wanted) {
    if (sd_bus_message_enter_container(answer, SD_BUS_TYPE_ARRAY, "s") <= 0) return false;
    bool isThere = false;
    for (auto text = BusCalls::readText(answer); !text.empty(); text = BusCalls::readText(answer)) {
        isThere = isThere || text == wanted;
    }
    sd_bus_message_rewind(answer, 1);
    return isThere;
}

std::string reasonOf(sd_bus_message* answer) {
    const auto error = BusCalls::errorName(answer);
    if (isAbsence(error)) return std::string(noService);
    if (isSilence(error)) return std::string(noAnswer);
    if (error == SD_BUS_ERROR_DISCONNECTED) return std::string(noBus);
    return fmt::format("Der Mitteilungsdienst lehnt ab ({}).", BusCalls::errorText(answer));
}

} // namespace

NotificationClient::NotificationClient(DBusThread& buses, Duration longestWait) :
    buses_(buses), longestWait_(longestWait), service_(serviceName, [this] { ownerChanged(); }) {}

void NotificationClient::connected(BusKind kind, sd_bus* bus) {
    if (kind != BusKind::session) return;
    bus_ = bus;
    service_.connected(bus);
}

void NotificationClient::lost(BusKind kind) {
    if (kind != BusKind::session) return;
    bus_ = nullptr;
    service_.lost();
    asking_.reset();
    abilities_.reset();
    while (!pending_.empty()) fail(pending_.begin()->first, std::string(noBus));
}

/// At the end no failure is reported any more; what still waits for the abilities is sent as most services
/// read it.
void NotificationClient::leaving() {
    if (!abilities_) abilities_ = {.readsMarkup = true, .makesSound = true};
    sendAll();
    pending_.clear();
}

// What is under way

std::uint64_t NotificationClient::begin(std::function<void(std::string)> fail) {
    const auto number = ++lastNumber_;
    pending_[number].fail = std::move(fail);
    buses_.after(longestWait_, [weak = weak_from_this(), number] {
        if (const auto self = weak.lock()) self->fail(number, std::string(noAnswer));
    });
    return number;
}

void NotificationClient::fail(std::uint64_t number, const std::string& reason) {
    const auto failed = pending_.extract(number);
    if (!failed.empty()) failed.mapped().fail(reason);
}

// Whether there is a service

void NotificationClient::askWhetherPossible(const NotificationService::AuthorizationAnswer& answer) {
    if (!bus_) {
        answer(false);
        return;
    }
    const auto number = begin([answer](std::string reason) { answer(std::unexpected(std::move(reason))); });
    pending_[number].decide = answer;
    askTheBus(number, "NameHasOwner", serviceName, [this, number](sd_bus_message* owned) {
        if (BusCalls::readBool(owned)) {
            decide(number, true);
        } else {
            askTheBus(number, "ListActivatableNames", nullptr,
                      [this, number](sd_bus_message* names) { decide(number, lists(names, serviceName)); });
        }
    });
}

void NotificationClient::decide(std::uint64_t number, bool isPossible) {
    if (!isPossible) noteAbsence();
    const auto decided = pending_.extract(number);
    if (!decided.empty()) decided.mapped().decide(isPossible);
}

void NotificationClient::askTheBus(std::uint64_t number, const char* member, const char* argument,
                                   BusCalls::Handler answered) {
    const auto question = argument ? BusCalls::message(bus_, BusCalls::ofTheBus(member), "s", argument)
                                   : BusCalls::message(bus_, BusCalls::ofTheBus(member));
    auto handle = [this, number, answered = std::move(answered)](sd_bus_message* answer) mutable {
        if (BusCalls::errorName(answer).empty()) {
            answered(answer);
        } else {
            fail(number, reasonOf(answer));
        }
    };
    auto slot = BusCalls::send(bus_, question, longestWait_, std::move(handle));
    if (slot) {
        pending_[number].slot = std::move(slot);
    } else {
        fail(number, std::string(noBus));
    }
}

void NotificationClient::noteAbsence() {
    if (!std::exchange(isAbsenceNoted_, true))
        DiagnosticsLog::note("notify", "Kein Mitteilungsdienst: Meldungen stehen nur im Protokoll.");
}

// What the service can

void NotificationClient::ownerChanged() {
    abilities_.reset();
    if (service_.isOwned()) askForAbilities();
}

void NotificationClient::askForAbilities() {
    const auto question = BusCalls::message(bus_, ofTheService("GetCapabilities"));
    asking_ = BusCalls::send(bus_, question, longestWait_,
                             [this](sd_bus_message* answer) { abilitiesAnswered(answer); });
}

/// One that doesn't know the question may show notifications all the same.
void NotificationClient::abilitiesAnswered(sd_bus_message* answer) {
    asking_.reset();
    const auto error = BusCalls::errorName(answer);
    if (isAbsence(error) || isSilence(error) || error == SD_BUS_ERROR_DISCONNECTED) {
        if (isAbsence(error)) noteAbsence();
        const auto reason = reasonOf(answer);
        std::vector<std::uint64_t> waiting;
        for (const auto& [number, pending] : pending_) {
            if (pending.unsent) waiting.push_back(number);
        }
        for (const auto number : waiting) fail(number, reason);
        return;
    }
    abilities_ = {.readsMarkup = lists(answer, "body-markup"), .makesSound = lists(answer, "sound")};
    sendAll();
}

// Notifications

void NotificationClient::show(Notification notification, NotificationService::Failure failure) {
    if (!bus_) {
        noteAbsence();
        failure(std::string(noBus));
        return;
    }
    const auto number = begin(std::move(failure));
    pending_[number].unsent = std::move(notification);
    if (abilities_) {
        send(number);
    } else if (!asking_) {
        askForAbilities();
    }
}

void NotificationClient::sendAll() {
    std::vector<std::uint64_t> waiting;
    for (const auto& [number, pending] : pending_) {
        if (pending.unsent) waiting.push_back(number);
    }
    for (const auto number : waiting) send(number);
}

void NotificationClient::send(std::uint64_t number) {
    auto& pending = pending_[number];
    const auto message = messageFor(*std::exchange(pending.unsent, std::nullopt));
    pending.slot = BusCalls::send(bus_, message, longestWait_, [this, number](sd_bus_message* answer) {
        if (BusCalls::errorName(answer).empty()) {
            pending_.erase(number);
        } else {
            if (isAbsence(BusCalls::errorName(answer))) noteAbsence();
            fail(number, reasonOf(answer));
        }
    });
    if (!pending.slot) fail(number, std::string(noBus));
}

BusMessage NotificationClient::messageFor(const Notification& notification) const {
    const auto title = NotificationText::title(notification.title);
    const auto body =
        NotificationText::body(notification.body, abilities_->readsMarkup ? NotificationText::Markup::yes
                                                                          : NotificationText::Markup::no);
    const std::string desktopEntry(Product::applicationId);
    constexpr std::uint32_t replacesNone = 0;
    constexpr int noActions = 0;
    constexpr int urgencyNormal = 1; // A byte, passed on as an int.
    constexpr int asLongAsUsual = -1;
    auto message = BusCalls::message(bus_, ofTheService("Notify"), "susssas", "Querlin", replacesNone,
                                     "audio-input-microphone", title.c_str(), body.c_str(), noActions);
    if (!message) return nullptr;
    auto* writing = message.get();
    sd_bus_message_open_container(writing, SD_BUS_TYPE_ARRAY, "{sv}");
    sd_bus_message_append(writing, "{sv}", "urgency", "y", urgencyNormal);
    sd_bus_message_append(writing, "{sv}", "category", "s", "x-querlin.dictation");
    sd_bus_message_append(writing, "{sv}", "desktop-entry", "s", desktopEntry.c_str());
    if (abilities_->makesSound) sd_bus_message_append(writing, "{sv}", "sound-name", "s", "message");
    sd_bus_message_close_container(writing);
    sd_bus_message_append(writing, "i", asLongAsUsual);
    return message;
}

} // namespace querlin
