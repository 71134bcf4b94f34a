#include "platform/system/InstanceLock.h"

#include "foundation/Files.h"
#include "state/DiagnosticsLog.h"

#include <cerrno>
#include <cstdlib>
#include <string>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

namespace querlin {

std::optional<InstanceLock> InstanceLock::acquire(const std::filesystem::path& folder,
                                                  std::string_view name) {
    (void)Files::makeFolder(folder); // What can't be made can't be opened either.
    const auto file = folder / (std::string(name) + ".lock");
    const int descriptor = ::open(file.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, S_IRUSR | S_IWUSR);
    if (descriptor < 0) {
        DiagnosticsLog::note("app", "Keine Sperrdatei: " + std::generic_category().message(errno));
        return InstanceLock(-1);
    }
    if (::flock(descriptor, LOCK_EX | LOCK_NB) == 0) return InstanceLock(descriptor);
    const bool isHeld = errno == EWOULDBLOCK;
    ::close(descriptor);
    if (isHeld) return std::nullopt;
    return InstanceLock(-1);
}

InstanceLock::InstanceLock(InstanceLock&& other) noexcept :
    descriptor_(std::exchange(other.descriptor_, -1)) {}

InstanceLock::~InstanceLock() {
    if (descriptor_ >= 0) ::close(descriptor_);
}

std::filesystem::path InstanceLock::folder(const std::filesystem::path& otherwise) {
    const char* runtime = std::getenv("XDG_RUNTIME_DIR"); // NOLINT(concurrency-mt-unsafe): nobody sets it.
    return runtime && *runtime == '/' ? std::filesystem::path(runtime) : otherwise;
}

} // namespace querlin
