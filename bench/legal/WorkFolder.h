#pragma once

#include <filesystem>
#include <stdexcept>

#include <stdlib.h> // NOLINT(modernize-deprecated-headers): mkdtemp

namespace querlin::bench {

/// A temporary folder, gone at the end.
class WorkFolder {
public:
    WorkFolder() {
        auto name = (std::filesystem::temp_directory_path() / "legal-bench-XXXXXX").string();
        if (!::mkdtemp(name.data())) throw std::runtime_error("no temporary folder");
        path_ = name;
    }
    ~WorkFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    WorkFolder(const WorkFolder&) = delete;
    WorkFolder& operator=(const WorkFolder&) = delete;

    const std::filesystem::path& path() const { return path_; }

private:
    std::filesystem::path path_;
};

} // namespace querlin::bench
