#pragma once

#include "foundation/Runtime.h"

#include <functional>
#include <optional>
#include <string>

namespace querlin {

/// Writes down the partial text of a recording, so that it survives the end of the process: at most
/// once a second, and never later than a second after it changed. Main thread only.
class PartialTextKeeper {
public:
    using Write = std::function<void(const std::string&)>;

    PartialTextKeeper(Runtime runtime, Write write) : runtime_(runtime), write_(std::move(write)) {}

    void update(std::string text);
    /// Writes what is waiting, and ends with it.
    void finish();
    /// Forgets what is waiting.
    void drop();

private:
    void writeWaiting();

    Runtime runtime_;
    Write write_;
    std::optional<std::string> waiting_;
    std::optional<Instant> lastWritten_;
    Registration timer_;
};

} // namespace querlin
