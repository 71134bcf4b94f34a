#include "support/TempFolder.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <stdexcept>

#include <unistd.h>

namespace querlin {

namespace fs = std::filesystem;

namespace {

/// Memory where there is any: the tests sync thousands of files.
fs::path fastFolder() {
    const fs::path memory = "/dev/shm";
    return ::access(memory.c_str(), W_OK) == 0 ? memory : fs::temp_directory_path();
}

} // namespace

TempFolder::TempFolder() {
    auto pattern = (fastFolder() / "querlin-test-XXXXXX").string();
    if (!::mkdtemp(pattern.data())) throw std::runtime_error("no temporary folder");
    path_ = pattern;
}

TempFolder::~TempFolder() {
    std::error_code ignored;
    // A test may have taken the right to write away.
    for (fs::recursive_directory_iterator entry(path_, ignored), end; !ignored && entry != end; entry.increment(ignored)) {
        if (entry->is_directory()) fs::permissions(entry->path(), fs::perms::owner_all, ignored);
    }
    fs::remove_all(path_, ignored);
}

std::vector<std::string> fileNames(const fs::path& folder) {
    std::vector<std::string> names;
    std::error_code error;
    for (fs::directory_iterator entry(folder, error), end; !error && entry != end; entry.increment(error)) {
        names.push_back(entry->path().filename().string());
    }
    std::ranges::sort(names);
    return names;
}

std::string contentOf(const fs::path& file) {
    std::ifstream in(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

void writeFile(const fs::path& file, std::string_view content) {
    fs::create_directories(file.parent_path());
    std::ofstream(file, std::ios::binary).write(content.data(), static_cast<std::streamsize>(content.size()));
}

} // namespace querlin
