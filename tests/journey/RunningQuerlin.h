#pragma once

#include "state/AppSettings.h"
#include "state/ApplicationPaths.h"
#include "state/DictationHistory.h"
#include "support/Desktop.h"
#include "support/ManualTime.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace querlin {

/// The whole program, as a user's login starts it, and the files that it keeps in this desktop's home. These are
/// looked into with its own classes.
class RunningQuerlin {
public:
    // The process

    /// Before a start: settings that differ from those of a first start.
    void prepare(const std::function<void(AppSettings&)>& change) const;
    /// The log begins anew with it.
    void start(std::vector<std::string> command = {QUERLIN_PROGRAM});
    /// True if it comes to listen for the hold key.
    bool listens() const { return says("[hotkey] Die Diktattaste wird gehört"); }
    bool isRunning() const { return process_.has_value(); }
    pid_t id() const { return process_->id(); }
    /// Sends the signal, if it isn't 0, and waits. The exit status; a signal's number, negative, where one has ended it
    /// (and 128 less with a core dump); nothing if it goes on for too long, and it is killed.
    std::optional<int> end(int signal);

    // The log of this start

    std::string log() const;
    bool has(const std::string& line) const { return log().contains(line); }
    /// How many of its lines hold this.
    std::size_t countOf(const std::string& part) const;
    /// Waits for it.
    bool says(const std::string& line, Duration longest = std::chrono::seconds(20)) const;

    // What it keeps

    const ApplicationPaths& paths() const { return paths_; }
    std::vector<DictationEntry> history() const;
    /// "2 Diktate, 17 Wörter"
    std::string statistics() const;
    /// The names of the files, sorted.
    std::vector<std::string> rescued() const;
    /// What lies beside a recording under way and was left by one that has been cut off.
    std::vector<std::string> recordings() const;
    /// The text of the recording under way, as far as it is on the disk.
    std::string textSoFar() const;

private:
    mutable ManualTime time_;
    ApplicationPaths paths_ = ApplicationPaths::fromEnvironment();
    std::optional<Program> process_;
};

} // namespace querlin
