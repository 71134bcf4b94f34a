#pragma once

#include <csignal>
#include <filesystem>

#include <sys/fsuid.h>
#include <sys/resource.h>
#include <unistd.h>

namespace querlin {

/// No file of this process can grow beyond a size, as on a full disk.
class FullDisk {
public:
    explicit FullDisk(rlim_t bytes = 0) {
        ::getrlimit(RLIMIT_FSIZE, &former_);
        formerHandler_ = std::signal(SIGXFSZ, SIG_IGN);
        const rlimit full{bytes, former_.rlim_max};
        ::setrlimit(RLIMIT_FSIZE, &full);
    }
    ~FullDisk() {
        ::setrlimit(RLIMIT_FSIZE, &former_);
        std::signal(SIGXFSZ, formerHandler_);
    }
    FullDisk(const FullDisk&) = delete;
    FullDisk& operator=(const FullDisk&) = delete;

private:
    rlimit former_{};
    void (*formerHandler_)(int) = SIG_DFL;
};

/// A folder and all in it can be read but not changed by this thread, not even by root.
class ReadOnlyFolder {
public:
    explicit ReadOnlyFolder(const std::filesystem::path& folder) : folder_(folder) {
        constexpr uid_t nobody = 65534;
        if (::geteuid() == 0) {
            for (auto path = folder; path != path.root_path() && isOurs(path); path = path.parent_path()) {
                [[maybe_unused]] const int given = ::chown(path.c_str(), nobody, nobody);
            }
            for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
                [[maybe_unused]] const int given = ::chown(entry.path().c_str(), nobody, nobody);
            }
        }
        std::filesystem::permissions(folder, std::filesystem::perms::owner_read | std::filesystem::perms::owner_exec);
        if (::geteuid() == 0) ::setfsuid(nobody); // The rights of root for files go with it.
    }
    ~ReadOnlyFolder() {
        ::setfsuid(::geteuid());
        std::filesystem::permissions(folder_, std::filesystem::perms::owner_all);
    }
    ReadOnlyFolder(const ReadOnlyFolder&) = delete;
    ReadOnlyFolder& operator=(const ReadOnlyFolder&) = delete;

private:
    static bool isOurs(const std::filesystem::path& path) { return path.string().find("querlin-test-") != std::string::npos; }

    std::filesystem::path folder_;
};

} // namespace querlin
