#pragma once

#include <cstdint>
#include <string>

/// Processes as the kernel lists them (proc(5)).
namespace querlin::ProcessTree {

/// Whether they are the same, or one descends from the other within the same session: programs show their
/// windows in one process and their elements in another. What is started from a terminal has a session of its
/// own, and is no part of the terminal.
bool areRelated(std::int32_t a, std::int32_t b);

/// The name of what runs in it; "?" if it has ended.
std::string name(std::int32_t process);

} // namespace querlin::ProcessTree
