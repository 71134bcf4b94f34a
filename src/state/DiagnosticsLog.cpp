#include "state/DiagnosticsLog.h"

namespace querlin::DiagnosticsLog {

namespace {

std::atomic<LogSink*> installedSink = nullptr; // NOLINT(*-non-const-global-variables): the one sink

} // namespace

void note(std::string_view category, std::string_view message) {
    if (auto* sink = installedSink.load()) sink->write(category, message);
}

void trace(std::string_view category, std::string_view message) {
    if (verbose) note(category, message);
}

void clear() {
    if (auto* sink = installedSink.load()) sink->clear();
}

Installation::Installation(LogSink& sink) : former_(installedSink.exchange(&sink)) {}
Installation::~Installation() { installedSink = former_; }

} // namespace querlin::DiagnosticsLog
