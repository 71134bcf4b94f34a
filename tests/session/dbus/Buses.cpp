#include "Buses.h"

#include <cstdlib>
#include <stdexcept>
#include <vector>

#include <fmt/format.h>
#include <systemd/sd-bus.h>

namespace querlin {

OwnBus::OwnBus(std::string variable) : variable_(std::move(variable)), former_(std::getenv(variable_.c_str())) {
    writeFile(folder_ / "bus.conf", fmt::format("<busconfig><type>session</type><listen>unix:path={}</listen>"
                                                "<policy context='default'><allow send_destination='*'/><allow own='*'/>"
                                                "<allow eavesdrop='false'/></policy></busconfig>",
                                                socket()));
    ::setenv(variable_.c_str(), ("unix:path=" + socket()).c_str(), 1);
}

OwnBus::~OwnBus() { ::setenv(variable_.c_str(), former_.c_str(), 1); }

void OwnBus::start() {
    daemon_.emplace(std::vector<std::string>{"dbus-daemon", "--config-file=" + (folder_ / "bus.conf").string(), "--nofork", "--nopidfile",
                                             "--nosyslog"});
    if (!eventually([this] { return std::filesystem::exists(socket()); })) throw std::runtime_error("no bus");
}

void OwnBus::kill() {
    daemon_.reset();
    std::filesystem::remove(socket());
}

Speaker::Speaker(On bus) {
    const int result = bus == On::system ? sd_bus_open_system(&bus_) : sd_bus_open_user(&bus_);
    if (result < 0) throw std::runtime_error("no bus to speak on");
}

Speaker::~Speaker() { sd_bus_flush_close_unref(bus_); }

void Speaker::own(const std::string& name) {
    if (sd_bus_request_name(bus_, name.c_str(), 0) < 0) throw std::runtime_error("not to be had: " + name);
}

void Speaker::emit(const std::string& path, const std::string& interface, const std::string& member, bool value) {
    sd_bus_emit_signal(bus_, path.c_str(), interface.c_str(), member.c_str(), "b", static_cast<int>(value));
    sd_bus_flush(bus_);
}

Login::Login(Knows known) : mock_({"/usr/bin/python3", "-m", "dbusmock", "--system", "--template", "logind"}) {
    const auto manager = [this](const std::string& rest) { return call("", "org.freedesktop.DBus.Mock." + rest); };
    if (!eventually([&] { return !manager("AddSession c1 seat0 0 wir true").empty(); })) throw std::runtime_error("no login service");
    manager("AddSession c2 seat0 1000 andere true");
    if (known == Knows::sessions) {
        ::setenv("XDG_SESSION_ID", "c1", 1);
        return;
    }
    manager("AddMethod org.freedesktop.login1.Manager GetSessionByPID u o \"ret = '/org/freedesktop/login1/session/c1'\"");
}

std::string Login::call(const std::string& path, const std::string& rest) {
    return shell(fmt::format("gdbus call --system -d org.freedesktop.login1 -o /org/freedesktop/login1{} -m {}", path, rest));
}

void Login::prepareFor(const std::string& what, bool begins) {
    call("", fmt::format("org.freedesktop.DBus.Mock.EmitSignal org.freedesktop.login1.Manager PrepareFor{} b '[<{}>]'", what, begins));
}

void Login::session(const std::string& id, const std::string& method) {
    call("/session/" + id, "org.freedesktop.login1.Session." + method);
}

void Login::setActive(const std::string& id, bool isActive) {
    call("/session/" + id,
         fmt::format("org.freedesktop.DBus.Mock.UpdateProperties org.freedesktop.login1.Session \"{{'Active': <{}>}}\"", isActive));
}

std::string Login::inhibitors() {
    const auto all = call("", "org.freedesktop.login1.Manager.ListInhibitors");
    std::string names;
    for (const auto* what : {"shutdown", "sleep"}) {
        if (all.contains(fmt::format("('{}', 'Querlin', 'Ein laufendes Diktat wird gesichert', 'delay'", what)))
            names += (names.empty() ? "" : " ") + std::string(what);
    }
    return names;
}

} // namespace querlin
