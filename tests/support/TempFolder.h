#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace querlin {

/// A folder of its own for one test, gone at its end.
class TempFolder {
public:
    TempFolder();
    ~TempFolder();
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;

    const std::filesystem::path& path() const { return path_; }
    std::filesystem::path operator/(std::string_view name) const { return path_ / name; }

private:
    std::filesystem::path path_;
};

/// Names of the files in a folder, sorted; none if the folder isn't there.
std::vector<std::string> fileNames(const std::filesystem::path& folder);
std::string contentOf(const std::filesystem::path& file);
void writeFile(const std::filesystem::path& file, std::string_view content);

} // namespace querlin
