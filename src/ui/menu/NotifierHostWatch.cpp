#include "ui/menu/NotifierHostWatch.h"

#include <limits>

#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusVariant>

namespace querlin {

namespace {

QString watcher() { return QStringLiteral("org.kde.StatusNotifierWatcher"); }
QString watcherPath() { return QStringLiteral("/StatusNotifierWatcher"); }

} // namespace

NotifierHostWatch::NotifierHostWatch(std::function<void()> changed) :
    changed_(std::move(changed)), names_(watcher(), bus_, QDBusServiceWatcher::WatchForOwnerChange) {
    askSoon_.setSingleShot(true);
    askSoon_.setInterval(0);
    QObject::connect(&askSoon_, &QTimer::timeout, &askSoon_, [this] { ask(); });
    if (!bus_.isConnected()) {
        isThere_ = false;
        return;
    }
    listen();
    ask();
}

NotifierHostWatch::~NotifierHostWatch() = default;

/// Whatever is told, the watcher is asked for what is so now.
void NotifierHostWatch::listen() {
    QObject::connect(&names_, &QDBusServiceWatcher::serviceOwnerChanged, &askSoon_,
                     [this] { askSoon_.start(); });
    for (const auto* signal : {"StatusNotifierHostRegistered", "StatusNotifierHostUnregistered"}) {
        bus_.connect(watcher(), watcherPath(), watcher(), QString::fromLatin1(signal), &askSoon_,
                     SLOT(start()));
    }
}

/// A watcher that hangs answers when it answers, or the bus does when it dies.
void NotifierHostWatch::ask() {
    auto question = QDBusMessage::createMethodCall(
        watcher(), watcherPath(), QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Get"));
    question.setAutoStartService(false);
    question << watcher() << QStringLiteral("IsStatusNotifierHostRegistered");
    pending_ =
        std::make_unique<QDBusPendingCallWatcher>(bus_.asyncCall(question, std::numeric_limits<int>::max()));
    QObject::connect(pending_.get(), &QDBusPendingCallWatcher::finished, pending_.get(),
                     [this](QDBusPendingCallWatcher* answer) { take(*answer); });
}

void NotifierHostWatch::take(QDBusPendingCallWatcher& answer) {
    const QDBusPendingReply<QDBusVariant> reply = answer;
    const bool isThere = reply.isValid() && reply.value().variant().toBool();
    pending_.release()->deleteLater(); // We are in its call.
    if (isThere_ == isThere) return;
    isThere_ = isThere;
    changed_();
}

} // namespace querlin
