#include "platform/qt/QuitSignals.h"

#include <array>
#include <atomic>
#include <csignal>

#include <QCoreApplication>
#include <QSocketNotifier>

namespace querlin {

namespace {

constexpr std::array quitSignals = {SIGTERM, SIGINT, SIGHUP};

/// The handler can reach nothing else.
std::atomic<const WakeUp*> arrived; // NOLINT(*-avoid-non-const-global-variables)
static_assert(decltype(arrived)::is_always_lock_free, "A signal handler can't wait for a lock.");

void quitArrived(int /*signal*/) {
    if (const auto* wakeUp = arrived.load()) wakeUp->ring();
}

} // namespace

QuitSignals::QuitSignals() :
    notifier_(std::make_unique<QSocketNotifier>(wakeUp_.descriptor(), QSocketNotifier::Read)) {
    QObject::connect(notifier_.get(), &QSocketNotifier::activated, notifier_.get(), [this] {
        wakeUp_.clear();
        QCoreApplication::exit(); // Not `quit`, which asks the windows first.
    });
    arrived = &wakeUp_;
    struct sigaction action{};
    action.sa_handler = quitArrived;
    action.sa_flags = SA_RESTART;
    for (const int signal : quitSignals) ::sigaction(signal, &action, nullptr);
}

QuitSignals::~QuitSignals() {
    struct sigaction action{};
    action.sa_handler = SIG_IGN; // The end is under way already.
    for (const int signal : quitSignals) ::sigaction(signal, &action, nullptr);
    arrived = nullptr;
}

} // namespace querlin
