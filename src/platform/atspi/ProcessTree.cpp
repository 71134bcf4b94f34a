#include "platform/atspi/ProcessTree.h"

#include <cstdlib>
#include <fstream>

#include <fmt/format.h>
#include <unistd.h>

namespace querlin {

namespace {

constexpr int mostGenerations = 16;

/// 0 for one that has ended.
std::int32_t parentOf(std::int32_t process) {
    std::ifstream file(fmt::format("/proc/{}/stat", process));
    std::string line;
    std::getline(file, line);
    // The name in brackets may contain anything; state and parent follow it.
    const auto end = line.rfind(')');
    if (end == std::string::npos || end + 4 > line.size()) return 0;
    return std::atoi(line.c_str() + end + 4); // NOLINT(cert-err34-c): the kernel writes numbers
}

bool descends(std::int32_t process, std::int32_t ancestor) {
    for (int i = 0; i < mostGenerations && process > 1; ++i) {
        if (process == ancestor) return true;
        process = parentOf(process);
    }
    return false;
}

} // namespace

bool ProcessTree::areRelated(std::int32_t a, std::int32_t b) {
    return a == b || (::getsid(a) == ::getsid(b) && (descends(a, b) || descends(b, a)));
}

std::string ProcessTree::name(std::int32_t process) {
    std::ifstream file(fmt::format("/proc/{}/comm", process));
    std::string name;
    std::getline(file, name);
    return name.empty() ? "?" : name;
}

} // namespace querlin
