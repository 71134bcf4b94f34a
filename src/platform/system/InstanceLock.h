#pragma once

#include <filesystem>
#include <optional>
#include <string_view>

namespace querlin {

/// One running program for each user: a lock file that the kernel frees with the process, however that ends.
class InstanceLock {
public:
    /// Nothing if another process holds it. A folder in which no lock can be made doesn't keep the program
    /// from starting: then this holds nothing.
    static std::optional<InstanceLock> acquire(const std::filesystem::path& folder, std::string_view name);

    InstanceLock(InstanceLock&& other) noexcept;
    InstanceLock& operator=(InstanceLock&&) = delete;
    InstanceLock(const InstanceLock&) = delete;
    InstanceLock& operator=(const InstanceLock&) = delete;
    ~InstanceLock();

    /// A folder of the login's own that goes with it ($XDG_RUNTIME_DIR); `otherwise` where there is none.
    static std::filesystem::path folder(const std::filesystem::path& otherwise);

private:
    explicit InstanceLock(int descriptor) : descriptor_(descriptor) {}

    int descriptor_;
};

} // namespace querlin
