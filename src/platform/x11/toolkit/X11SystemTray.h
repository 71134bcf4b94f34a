#pragma once

#include "desktop/SystemTray.h"
#include "foundation/Lifetime.h"
#include "foundation/MainQueue.h"

#include <cstdint>
#include <functional>

#include <QAbstractNativeEventFilter>

namespace querlin {

/// Whether the X server's system tray has an owner (System Tray Protocol 0.3). Reported by the server on the
/// toolkit's own connection; known from the beginning. Main thread.
class X11SystemTray final : public SystemTray, public QAbstractNativeEventFilter {
public:
    explicit X11SystemTray(MainQueue& queue);
    ~X11SystemTray() override;
    X11SystemTray(const X11SystemTray&) = delete;
    X11SystemTray& operator=(const X11SystemTray&) = delete;

    const Published<bool>& isThere() const override { return isThere_; }
    bool nativeEventFilter(const QByteArray& eventType, void* message, qintptr* result) override;

private:
    std::uint32_t selection_ = 0;   ///< an atom
    std::uint8_t notification_ = 0; ///< the event's number, as this server has given it
    Published<bool> isThere_{false};
    Lifetime lifetime_;
    std::function<void(bool)> publishSoon_;
};

} // namespace querlin
