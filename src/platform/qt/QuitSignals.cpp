#include "platform/qt/QuitSignals.h"

#include <array>
#include <csignal>
#include <cstdint>

#include <sys/eventfd.h>
#include <unistd.h>

#include <QCoreApplication>
#include <QSocketNotifier>

namespace querlin {

namespace {

constexpr std::array quitSignals = {SIGTERM, SIGINT, SIGHUP};

/// The handler can reach nothing else.
int arrived = -1; // NOLINT(*-avoid-non-const-global-variables)

void tell(int /*signal*/) {
    const std::uint64_t one = 1;
    [[maybe_unused]] const auto written = ::write(arrived, &one, sizeof one);
}

} // namespace

QuitSignals::QuitSignals() {
    arrived = ::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    notifier_ = std::make_unique<QSocketNotifier>(arrived, QSocketNotifier::Read);
    QObject::connect(notifier_.get(), &QSocketNotifier::activated, notifier_.get(), [] {
        std::uint64_t count = 0;
        [[maybe_unused]] const auto read = ::read(arrived, &count, sizeof count);
        QCoreApplication::exit(); // Not `quit`, which asks the windows first.
    });
    struct sigaction action{};
    action.sa_handler = tell;
    action.sa_flags = SA_RESTART;
    for (const int signal : quitSignals) ::sigaction(signal, &action, nullptr);
}

QuitSignals::~QuitSignals() {
    struct sigaction action{};
    action.sa_handler = SIG_IGN; // The end is under way already.
    for (const int signal : quitSignals) ::sigaction(signal, &action, nullptr);
    notifier_.reset();
    ::close(std::exchange(arrived, -1));
}

} // namespace querlin
