#pragma once

#include "foundation/Clock.h"
#include "foundation/SerialQueue.h"
#include "state/DiagnosticsLog.h"

#include <filesystem>

namespace querlin {

/// The log as a text file, one line per call: "HH:mm:ss.SSS  [category] message" in local time.
///
/// The stamp is the moment of the call. The file is opened for each line on a queue of its own, and
/// starts again from nothing when a line finds it longer than `limitInBytes`. No failure is reported
/// to anyone.
class LogFile final : public LogSink {
public:
    static constexpr std::int64_t limitInBytes = 2'000'000;

    LogFile(std::filesystem::path file, const Clock& clock);

    void write(std::string_view category, std::string_view message) override;
    void clear() override;

    const std::filesystem::path& path() const { return file_; }
    /// Waits until the lines so far are in the file, but not longer than `limit`.
    bool flush(Duration limit) { return queue_.drain(limit); }

private:
    std::filesystem::path file_;
    const Clock& clock_;
    SerialQueue queue_;
};

} // namespace querlin
