#pragma once

#include "state/DiagnosticsLog.h"

#include <cstdio>

#include <fmt/format.h>

namespace querlin {

/// Prints the log's lines to the terminal.
class ShownLog final : public LogSink {
public:
    void write(std::string_view category, std::string_view message) override {
        fmt::print(stderr, "[{}] {}\n", category, message);
    }
    void clear() override {}
};

} // namespace querlin
