#pragma once

#include <cstdint>
#include <functional>

#include <QAbstractNativeEventFilter>
#include <QTimer>

namespace querlin {

/// Whether the X server's system tray has an owner (System Tray Protocol 0.3). Told by the server, on the
/// toolkit's own connection; on other display servers there is none. Main thread.
class SystemTrayWatch final : public QAbstractNativeEventFilter {
public:
    /// `changed` is called from the event loop.
    explicit SystemTrayWatch(std::function<void()> changed);
    ~SystemTrayWatch() override;
    SystemTrayWatch(const SystemTrayWatch&) = delete;
    SystemTrayWatch& operator=(const SystemTrayWatch&) = delete;

    bool isThere() const { return isThere_; }
    bool nativeEventFilter(const QByteArray& eventType, void* message, qintptr* result) override;

private:
    std::function<void()> changed_;
    QTimer tellSoon_;
    std::uint32_t selection_ = 0;   ///< an atom
    std::uint8_t notification_ = 0; ///< the event's number, as this server has given it
    bool isThere_ = false;
};

} // namespace querlin
