#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace querlin {

struct RunningApplication {
    std::int32_t processIdentifier = 0;
    /// As its users know it: "Thunderbird".
    std::optional<std::string> localizedName;
    /// The same at each start: "org.mozilla.Thunderbird".
    std::optional<std::string> applicationId;

    bool operator==(const RunningApplication&) const = default;
};

/// The applications of the desktop. Main thread; never waits for long.
class Workspace {
public:
    virtual ~Workspace() = default;
    /// The one whose window has the keyboard.
    virtual std::optional<RunningApplication> frontmostApplication() = 0;
};

} // namespace querlin
