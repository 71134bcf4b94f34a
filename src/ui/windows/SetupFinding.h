#pragma once

#include <string>

namespace querlin {

/// One thing that the program needs, and its state, in German for the user.
struct SetupFinding {
    std::string name;  ///< "Mikrofon"
    std::string state; ///< "Headset von Jabra", or what is missing and what to do about it
    bool isFine = false;

    bool operator==(const SetupFinding&) const = default;
};

} // namespace querlin
