#include "platform/dbus/ScreenSaverWatch.h"

#include <array>

#include <fmt/format.h>

namespace querlin {

namespace {

/// Names of services, and of their interfaces too.
constexpr std::array names = {
    "org.freedesktop.ScreenSaver", "org.gnome.ScreenSaver", "org.cinnamon.ScreenSaver",
    "org.mate.ScreenSaver",        "org.xfce.ScreenSaver",
};

} // namespace

ScreenSaverWatch::ScreenSaverWatch(std::function<void(bool)> changed) : changed_(std::move(changed)) {
    for (const auto* name : names) savers_.push_back(std::make_unique<NameOwner>(name, [] {}));
}

void ScreenSaverWatch::connected(sd_bus* bus) {
    for (const auto& saver : savers_) {
        saver->connected(bus);
        const auto rule =
            fmt::format("type='signal',sender='{0}',interface='{0}',member='ActiveChanged'", saver->name());
        listening_.push_back(BusCalls::listen(bus, rule, [this, &saver = *saver](sd_bus_message* signal) {
            if (saver.hasSent(signal)) changed_(BusCalls::readBool(signal));
        }));
    }
}

void ScreenSaverWatch::lost() {
    listening_.clear();
    for (const auto& saver : savers_) saver->lost();
}

} // namespace querlin
