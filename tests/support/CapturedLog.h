#pragma once

#include "state/DiagnosticsLog.h"

#include <algorithm>
#include <mutex>
#include <string>
#include <vector>

namespace querlin {

/// Catches the log's lines as "[category] message" for as long as it lives, the chatty ones too.
class CapturedLog final : public LogSink {
public:
    CapturedLog() { DiagnosticsLog::verbose = true; }
    ~CapturedLog() override { DiagnosticsLog::verbose = false; }
    CapturedLog(const CapturedLog&) = delete;
    CapturedLog& operator=(const CapturedLog&) = delete;

    void write(std::string_view category, std::string_view message) override {
        const std::scoped_lock guard(mutex_);
        lines_.push_back("[" + std::string(category) + "] " + std::string(message));
    }
    void clear() override {
        const std::scoped_lock guard(mutex_);
        lines_.clear();
    }

    std::vector<std::string> lines() const {
        const std::scoped_lock guard(mutex_);
        return lines_;
    }
    bool has(std::string_view line) const { return std::ranges::count(lines(), line) > 0; }
    std::size_t countOf(std::string_view part) const {
        const auto all = lines();
        return static_cast<std::size_t>(
            std::ranges::count_if(all, [part](const auto& line) { return line.find(part) != std::string::npos; }));
    }

private:
    mutable std::mutex mutex_;
    std::vector<std::string> lines_;
    DiagnosticsLog::Installation installation_{*this};
};

} // namespace querlin
