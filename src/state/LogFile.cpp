#include "state/LogFile.h"

#include "foundation/Files.h"
#include "foundation/GermanFormat.h"

#include <fcntl.h>
#include <unistd.h>

#include <fmt/format.h>

namespace querlin {

namespace {

// Not blocking: a pipe in the place of the log must not stop the queue.
int openForAppending(const std::filesystem::path& file, int furtherFlags) {
    return ::open(file.c_str(), O_WRONLY | O_CLOEXEC | O_NONBLOCK | furtherFlags, 0600);
}

void append(const std::filesystem::path& file, const std::string& line) {
    int out = openForAppending(file, 0);
    if (out < 0) {
        (void)Files::makeFolder(file.parent_path());
        out = openForAppending(file, O_CREAT);
    }
    if (out < 0) return;
    if (::lseek(out, 0, SEEK_END) > LogFile::limitInBytes) {
        if (::ftruncate(out, 0) == 0) ::lseek(out, 0, SEEK_SET);
    }
    [[maybe_unused]] const auto written = ::write(out, line.data(), line.size());
    ::close(out);
}

} // namespace

LogFile::LogFile(std::filesystem::path file, const Clock& clock) : file_(std::move(file)), clock_(clock) {}

void LogFile::write(std::string_view category, std::string_view message) {
    queue_.run([file = file_, line = fmt::format("{}  [{}] {}\n", localLogStamp(clock_.now()), category,
                                                 message)] { append(file, line); });
}

void LogFile::clear() {
    queue_.run([file = file_] { (void)Files::writeAtomically(file, ""); });
}

} // namespace querlin
