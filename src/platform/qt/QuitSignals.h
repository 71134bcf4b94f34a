#pragma once

#include "foundation/WakeUp.h"

#include <memory>

class QSocketNotifier;

namespace querlin {

/// While this lives SIGTERM, SIGINT and SIGHUP end the toolkit's loop instead of the process. One at a time.
class QuitSignals {
public:
    QuitSignals();
    ~QuitSignals();
    QuitSignals(const QuitSignals&) = delete;
    QuitSignals& operator=(const QuitSignals&) = delete;

private:
    WakeUp wakeUp_;
    std::unique_ptr<QSocketNotifier> notifier_;
};

} // namespace querlin
