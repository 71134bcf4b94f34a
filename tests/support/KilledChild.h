#pragma once

#include <chrono>
#include <string>
#include <vector>

namespace querlin {

/// Runs a program in a child process, kills it `delay` after it has printed `sign`, and returns its whole
/// output.
std::string killedAfter(char sign, std::vector<std::string> command, std::chrono::microseconds delay);

} // namespace querlin
