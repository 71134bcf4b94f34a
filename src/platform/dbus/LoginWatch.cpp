#include "platform/dbus/LoginWatch.h"

#include "state/DiagnosticsLog.h"

#include <array>
#include <cstdlib>
#include <string_view>

#include <fmt/format.h>
#include <unistd.h>

namespace querlin {

namespace {

constexpr Duration longestWait = std::chrono::seconds(5);
constexpr const char* serviceName = "org.freedesktop.login1";
constexpr const char* managerPath = "/org/freedesktop/login1";
constexpr const char* managerInterface = "org.freedesktop.login1.Manager";
constexpr std::string_view sessionInterface = "org.freedesktop.login1.Session";

/// The ways to our own session, in the order they are tried. A program that the user's service manager has
/// started belongs to no session by its process; "auto" is then the one on the screen.
constexpr std::size_t countOfWays = 3;

BusMessage questionForSession(sd_bus* bus, std::size_t way, const std::string& nameInEnvironment) {
    const auto ask = [bus](const char* member, const char* types, auto argument) {
        return BusCalls::message(bus, {serviceName, managerPath, managerInterface, member}, types, argument);
    };
    if (way == 0) return ask("GetSessionByPID", "u", static_cast<std::uint32_t>(::getpid()));
    return ask("GetSession", "s",
               way == 1 && !nameInEnvironment.empty() ? nameInEnvironment.c_str() : "auto");
}

std::string sessionInEnvironment() {
    const char* name = std::getenv("XDG_SESSION_ID"); // NOLINT(concurrency-mt-unsafe): on the main thread
    return name ? name : "";
}

std::string signalRule(std::string_view path, std::string_view interface, std::string_view member) {
    return fmt::format("type='signal',sender='{}',path='{}',interface='{}',member='{}'", serviceName, path,
                       interface, member);
}

} // namespace

LoginWatch::LoginWatch(Listener listener) :
    listener_(std::move(listener)),
    nameInEnvironment_(sessionInEnvironment()),
    service_(serviceName, [this] { ownerChanged(); }) {}

void LoginWatch::connected(sd_bus* bus) {
    bus_ = bus;
    service_.connected(bus);
    const auto listen = [&](const char* member, DelayInhibitor& inhibitor, SystemSignal meaning) {
        machineSlots_.push_back(BusCalls::listen(
            bus, signalRule(managerPath, managerInterface, member),
            [this, &inhibitor, meaning](sd_bus_message* signal) { prepare(signal, inhibitor, meaning); }));
    };
    listen("PrepareForSleep", sleep_, SystemSignal::willSleep);
    listen("PrepareForShutdown", shutdown_, SystemSignal::sessionResigned);
}

/// A promise that was given holds without the bus too.
void LoginWatch::lost() {
    bus_ = nullptr;
    service_.lost();
    machineSlots_.clear();
    sessionSlots_.clear();
    asking_.reset();
    sleep_.stopAsking();
    shutdown_.stopAsking();
}

void LoginWatch::setHolding(bool isHolding) {
    isHolding_ = isHolding;
    if (isHolding) {
        takeInhibitors();
        return;
    }
    sleep_.letGo();
    shutdown_.letGo();
}

void LoginWatch::ownerChanged() {
    sessionSlots_.clear();
    asking_.reset();
    if (service_.isOwned()) {
        takeInhibitors();
        findSession(0);
    } else if (!std::exchange(isAbsenceNoted_, true)) {
        DiagnosticsLog::note("app", "Kein Anmeldedienst: Ruhezustand und Abmeldung werden nicht bemerkt.");
    }
}

void LoginWatch::takeInhibitors() {
    if (!isHolding_ || !service_.isOwned()) return;
    sleep_.take(bus_);
    shutdown_.take(bus_);
}

/// True before it happens, false when it is over or called off.
void LoginWatch::prepare(sd_bus_message* signal, DelayInhibitor& inhibitor, SystemSignal meaning) {
    if (!service_.hasSent(signal)) return;
    if (BusCalls::readBool(signal)) {
        listener_.happened(meaning, inhibitor.handOver());
    } else if (isHolding_) {
        inhibitor.take(bus_);
    }
}

void LoginWatch::findSession(std::size_t way) {
    asking_ = BusCalls::send(
        bus_, questionForSession(bus_, way, nameInEnvironment_), longestWait,
        [this, way](sd_bus_message* answer) {
            if (BusCalls::errorName(answer).empty()) {
                watchSession(BusCalls::readText(answer));
            } else if (way + 1 < countOfWays) {
                findSession(way + 1);
            } else {
                DiagnosticsLog::note(
                    "app", fmt::format("Die eigene Sitzung ist dem Anmeldedienst nicht bekannt ({}).",
                                       BusCalls::errorText(answer)));
            }
        });
}

void LoginWatch::watchSession(const std::string& path) {
    const auto listen = [&](std::string_view interface, std::string_view member, auto heard) {
        sessionSlots_.push_back(BusCalls::listen(bus_, signalRule(path, interface, member),
                                                 [this, heard](sd_bus_message* signal) {
                                                     if (service_.hasSent(signal)) heard(signal);
                                                 }));
    };
    listen(sessionInterface, "Lock",
           [this](sd_bus_message*) { listener_.happened(SystemSignal::screenLocked, nullptr); });
    listen(sessionInterface, "Unlock", [this](sd_bus_message*) { listener_.unlocked(); });
    listen("org.freedesktop.DBus.Properties", "PropertiesChanged",
           [this](sd_bus_message* signal) { propertiesChanged(signal); });
}

void LoginWatch::propertiesChanged(sd_bus_message* signal) const {
    if (BusCalls::readText(signal) != sessionInterface) return;
    if (sd_bus_message_enter_container(signal, SD_BUS_TYPE_ARRAY, "{sv}") <= 0) return;
    while (sd_bus_message_enter_container(signal, SD_BUS_TYPE_DICT_ENTRY, "sv") > 0) {
        const auto property = BusCalls::readText(signal);
        if (property != "LockedHint" && property != "Active") {
            sd_bus_message_skip(signal, "v");
        } else if (sd_bus_message_enter_container(signal, SD_BUS_TYPE_VARIANT, "b") > 0) {
            const bool value = BusCalls::readBool(signal);
            sd_bus_message_exit_container(signal);
            if (property == "Active") {
                if (!value) listener_.happened(SystemSignal::sessionResigned, nullptr);
            } else if (value) {
                listener_.happened(SystemSignal::screenLocked, nullptr);
            } else {
                listener_.unlocked();
            }
        }
        if (sd_bus_message_exit_container(signal) < 0) return;
    }
}

} // namespace querlin
