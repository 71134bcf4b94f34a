#pragma once

#include "Tray.h"
#include "report/Measuring.h"
#include "state/ApplicationPaths.h"
#include "support/Desktop.h"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace querlin::bench {

/// Settings of somebody who has used the program before, whose laws are up to date.
void prepareSettings();
/// The laws beside the project, if they are there, where the program looks for newer ones.
bool prepareLaws();

/// The program, in the virtual desktop's own home.
class RunningProgram {
public:
    RunningProgram();

    /// Whether its symbol comes into the tray, and it listens.
    bool comesUp(Tray& tray) const;
    /// Itself alone, and itself with its helper.
    std::int64_t memoryInBytes() const;
    std::int64_t memoryWithHelpersInBytes() const;
    /// All its processes' computing time so far.
    double computingSeconds() const;

private:
    std::vector<std::string> processes() const;

    ApplicationPaths paths_ = ApplicationPaths::fromEnvironment();
    std::unique_ptr<Program> program_;
};

} // namespace querlin::bench
