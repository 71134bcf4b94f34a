#pragma once

#include "foundation/Release.h"
#include "foundation/Time.h"

#include <compare>
#include <expected>
#include <functional>
#include <memory>
#include <string>

#include <systemd/sd-bus.h>

namespace querlin {

using AtspiConnection = std::unique_ptr<sd_bus, Release<sd_bus_close_unref>>;
using AtspiMessage = std::unique_ptr<sd_bus_message, Release<sd_bus_message_unref>>;

/// An element of some application: the application's name on the bus, and the element's path in it.
struct AtspiReference {
    std::string name;
    std::string path;

    auto operator<=>(const AtspiReference&) const = default;
};

namespace AtspiInterface {
constexpr auto accessible = "org.a11y.atspi.Accessible";
constexpr auto text = "org.a11y.atspi.Text";
constexpr auto registry = "org.a11y.atspi.Registry";
constexpr auto properties = "org.freedesktop.DBus.Properties";
} // namespace AtspiInterface

/// Where all applications of the accessibility bus hang.
inline AtspiReference atspiRoot() { return {"org.a11y.atspi.Registry", "/org/a11y/atspi/accessible/root"}; }

/// A connection to a bus on which each wait has its end. Of one thread. Errors are negative numbers of the
/// system (-ETIMEDOUT, -ENOTCONN, …).
class AtspiBus {
public:
    /// A descriptor that ends all waits with -ECANCELED as soon as it can be read; none by default.
    using Interruption = int;

    /// The bus of the user's login.
    static std::expected<AtspiBus, int> openSession(Duration longest, Interruption interruption = -1);
    static std::expected<AtspiBus, int> open(const std::string& address, Duration longest,
                                             Interruption interruption = -1);

    sd_bus* get() const { return connection_.get(); }
    bool isLost() const { return sd_bus_is_open(get()) <= 0; }

    /// Calls a method with its arguments, as `types` names them, and waits for the answer. Signals that come
    /// meanwhile are served.
    template<class... Arguments>
    std::expected<AtspiMessage, int> call(const AtspiReference& of, const char* interface, const char* member,
                                          Duration longest, const char* types = "", Arguments... arguments) {
        sd_bus_message* made = nullptr;
        const int fault =
            sd_bus_message_new_method_call(get(), &made, of.name.c_str(), of.path.c_str(), interface, member);
        if (fault < 0) return std::unexpected(fault);
        const AtspiMessage message(made);
        const int appended = sd_bus_message_append(made, types, arguments...);
        if (appended < 0) return std::unexpected(appended);
        return send(made, longest);
    }
    /// Serves what comes until `reached`. Zero, or an error.
    int serve(const std::function<bool()>& reached, Instant deadline);

private:
    AtspiBus(AtspiConnection connection, Interruption interruption) :
        connection_(std::move(connection)), interruption_(interruption) {}
    static std::expected<AtspiBus, int> whenReady(AtspiBus bus, Duration longest);
    std::expected<AtspiMessage, int> send(sd_bus_message* message, Duration longest);
    int wait(Instant deadline) const;

    AtspiConnection connection_;
    Interruption interruption_;
};

} // namespace querlin
