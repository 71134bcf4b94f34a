#pragma once

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string_view>

namespace querlin::bench {

/// What a fresh process does, and then reports of itself.
enum class ChildWork : unsigned char { nothing, loadOurs, loadPlainly };

struct ChildResult {
    double seconds = 0;
    /// The most memory that it ever had.
    std::size_t peakInBytes = 0;
    std::size_t sections = 0;
    std::size_t textBytes = 0;
};

/// Runs this program anew, for the corpus in the folder. Throws if that fails.
ChildResult runChild(ChildWork work, const std::filesystem::path& folder);

/// The other side: the name of the work, if the first argument is one.
std::optional<ChildWork> childWork(std::string_view argument);
/// Does it and writes the result where the parent reads.
void beChild(ChildWork work, const std::filesystem::path& folder);

} // namespace querlin::bench
