#pragma once

#include <atomic>
#include <string>
#include <string_view>

namespace querlin {

/// Takes the lines of the log. Called from any thread; must neither wait nor fail.
class LogSink {
public:
    virtual ~LogSink() = default;
    virtual void write(std::string_view category, std::string_view message) = 0;
    /// Empties the log of what was written before this call.
    virtual void clear() = 0;
};

/// The program's one log. German lines under short categories ("controller", "pipeline", "rescue").
///
/// No line ever holds a word that was dictated, recognised or corrected: lines hold counts, categories, codes
/// and reasons.
///
/// Callable from any thread; a call never waits for the disk and never fails. Before a sink is
/// installed, lines go nowhere.
namespace DiagnosticsLog {

/// For what must be in every log: phases, decisions, failures.
void note(std::string_view category, std::string_view message);
/// For chatty detail; silent while `verbose` is false.
void trace(std::string_view category, std::string_view message);
void clear();

/// Whether `trace` writes.
inline std::atomic<bool> verbose = false; // NOLINT(*-non-const-global-variables): the log's one switch

/// Sends all lines to `sink` for as long as this lives; then to the sink that was there before.
class Installation {
public:
    explicit Installation(LogSink& sink);
    ~Installation();
    Installation(const Installation&) = delete;
    Installation& operator=(const Installation&) = delete;

private:
    LogSink* former_;
};

} // namespace DiagnosticsLog

} // namespace querlin
