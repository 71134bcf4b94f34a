#pragma once

#include <cstdint>
#include <string>

namespace querlin {

/// Processes as the kernel lists them (proc(5)).
namespace ProcessTree {

/// Whether they are the same, or one descends from the other: programs show their windows in one process and
/// their elements in another.
bool areRelated(std::int32_t a, std::int32_t b);

/// The name of what runs in it; "?" if it has ended.
std::string name(std::int32_t process);

} // namespace ProcessTree

} // namespace querlin
