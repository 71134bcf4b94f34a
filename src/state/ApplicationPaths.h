#pragma once

#include <filesystem>
#include <string_view>

namespace querlin {

/// Where the program keeps its files, by the rules of the XDG base directories (0.8).
struct ApplicationPaths {
    /// History, rescued dictations, laws: "$XDG_DATA_HOME/Querlin".
    std::filesystem::path support;
    /// The preferences, one file per domain: "$XDG_CONFIG_HOME".
    std::filesystem::path preferences;
    /// The log: "$XDG_STATE_HOME/Querlin.log".
    std::filesystem::path log;
    /// Recordings under way: "$XDG_CACHE_HOME/Querlin". A user's own temporary folder that outlives
    /// the login and a power cut, so that a recording cut off by one can be rescued.
    std::filesystem::path recordings;

    /// The law texts that updates have fetched.
    std::filesystem::path laws() const { return support / "Gesetze"; }
    /// The user's own models for speech recognition, a folder for each.
    std::filesystem::path models() const { return support / "Modelle"; }
    std::filesystem::path rescuedDictations() const { return support / "Gerettete Diktate"; }
    std::filesystem::path preferencesFile(std::string_view domain) const;

    /// From this process's environment. A variable that is unset, empty or not an absolute path
    /// counts as its default below the home folder.
    static ApplicationPaths fromEnvironment();
};

} // namespace querlin
