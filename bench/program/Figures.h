#pragma once

#include "report/Report.h"

#include <string_view>

namespace querlin::bench {

/// The table; remembers whether a bar was missed.
class Figures {
public:
    void section(std::string_view title) { report_.section(title); }
    /// Both in seconds.
    void times(std::string_view name, double ours, double peer, Bar bar);
    /// Both in words, ours at most that; for what has another unit.
    void limit(std::string_view name, double ours, double limit, std::string_view unit);
    /// What could not be measured counts as not reached.
    void failed(std::string_view text);
    void note(std::string_view text) { report_.note(text); }

    bool areAllReached() const { return misses_ == 0; }

private:
    Report report_;
    int misses_ = 0;
};

} // namespace querlin::bench
