#pragma once

#include <functional>
#include <memory>
#include <optional>

#include <QDBusConnection>
#include <QDBusServiceWatcher>
#include <QTimer>

class QDBusPendingCallWatcher;

namespace querlin {

/// Whether a host of StatusNotifierItems is registered on the session bus (freedesktop.org,
/// StatusNotifierItem). Told by the bus and by the watcher of the items; nobody is waited for. Main thread.
class NotifierHostWatch {
public:
    /// `changed` is called from the event loop.
    explicit NotifierHostWatch(std::function<void()> changed);
    ~NotifierHostWatch();
    NotifierHostWatch(const NotifierHostWatch&) = delete;
    NotifierHostWatch& operator=(const NotifierHostWatch&) = delete;

    /// Nothing as long as the watcher of the items hasn't answered.
    std::optional<bool> isThere() const { return isThere_; }

private:
    void listen();
    void ask();
    void take(QDBusPendingCallWatcher& answer);

    std::function<void()> changed_;
    QDBusConnection bus_ = QDBusConnection::sessionBus();
    QDBusServiceWatcher names_;
    QTimer askSoon_;
    std::unique_ptr<QDBusPendingCallWatcher> pending_;
    std::optional<bool> isThere_;
};

} // namespace querlin
