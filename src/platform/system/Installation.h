#pragma once

#include <filesystem>
#include <vector>

namespace querlin {

/// Where the program's own things lie: in the tree that it is installed in, else in the one it was built in.
///
/// The places stay right for the whole run, also when an upgrade replaces the program under it: they are
/// named by folders, not by the file that runs. An installed program looks nowhere else, and never into a
/// build tree.
struct Installation {
    std::filesystem::path resources;  ///< laws, vocabulary, starter model, sounds
    std::filesystem::path recogniser; ///< the helper program of speech recognition
    /// Folders that may hold the library of the streaming recogniser. Whether one does is to be seen.
    std::vector<std::filesystem::path> recognitionLibraries;

    /// Asks the system where this program's file lies; the build tree if it doesn't say. Any thread.
    static Installation ofThisProgram();

    /// That of a program at this place, as the kernel tells it: links are resolved, and behind the name of a
    /// file that is gone stands " (deleted)". `ofBuild` if no installed tree is around it.
    static Installation of(const std::filesystem::path& executable, const Installation& ofBuild);
};

} // namespace querlin
