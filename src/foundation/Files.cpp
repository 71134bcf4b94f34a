#include "foundation/Files.h"

#include "foundation/GermanFormat.h"
#include "foundation/Uuid.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <fmt/format.h>

namespace querlin {

namespace fs = std::filesystem;

namespace Files {
namespace {

constexpr mode_t ownerFile = 0600;
constexpr mode_t ownerFolder = 0700;
constexpr std::string_view unfinishedSuffix = ".neu";

std::unexpected<FileError> failure(int code) {
    return std::unexpected(FileError{std::error_code(code, std::generic_category())});
}
std::unexpected<FileError> lastFailure() { return failure(errno); }

/// An open file descriptor that is closed at the end of the scope.
class Descriptor {
public:
    explicit Descriptor(int number) : number_(number) {}
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    ~Descriptor() {
        if (number_ >= 0) ::close(number_);
    }
    explicit operator bool() const { return number_ >= 0; }
    int number() const { return number_; }
    /// Closes now and reports whether everything was stored (a full disk may show only here).
    bool close() { return ::close(std::exchange(number_, -1)) == 0; }

private:
    int number_;
};

int openToRead(const fs::path& file) {
    // Non-blocking: opening a pipe in place of a file must not hang.
    return ::open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
}

bool writeAll(int descriptor, std::string_view bytes) {
    while (!bytes.empty()) {
        const auto count = ::write(descriptor, bytes.data(), bytes.size());
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return false;
        bytes.remove_prefix(static_cast<std::size_t>(count));
    }
    return true;
}

void syncFolder(const fs::path& folder) {
    const Descriptor open(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (open) ::fsync(open.number());
}

fs::path folderOf(const fs::path& file) {
    return file.has_parent_path() ? file.parent_path() : fs::path(".");
}

bool isUnfinishedName(std::string_view name) {
    constexpr std::size_t uuidLength = 36;
    if (!name.starts_with('.') || !name.ends_with(unfinishedSuffix)) return false;
    name.remove_suffix(unfinishedSuffix.size());
    return name.size() > uuidLength + 1 && canonicalUuid(name.substr(name.size() - uuidLength)).has_value();
}

/// Fills a new file beside `file` through `fill` and renames it into place.
template<class Fill>
FileResult<> replace(const fs::path& file, Durability durability, Fill fill) {
    const auto unfinished = unfinishedName(file);
    Descriptor out(
        ::open(unfinished.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW, ownerFile));
    if (!out) return lastFailure();
    const bool synced = durability == Durability::Synced;
    if (!fill(out.number()) || (synced && ::fsync(out.number()) != 0) || !out.close() ||
        ::rename(unfinished.c_str(), file.c_str()) != 0) {
        const auto error = lastFailure();
        ::unlink(unfinished.c_str());
        return error;
    }
    if (synced) syncFolder(folderOf(file));
    return {};
}

bool isStemTaken(const fs::path& folder, const std::string& stem) {
    std::error_code ignored;
    for (fs::directory_iterator entry(folder, ignored), end; !ignored && entry != end;
         entry.increment(ignored)) {
        if (entry->path().stem() == stem) return true;
    }
    return false;
}

} // namespace
} // namespace Files

std::string FileError::description() const {
    struct Row {
        std::errc code;
        std::string_view text;
    };
    static constexpr std::array<Row, 10> rows = {{
        {std::errc::no_space_on_device, "Kein Speicherplatz mehr frei"},
        {std::errc::permission_denied, "Zugriff verweigert"},
        {std::errc::operation_not_permitted, "Zugriff nicht erlaubt"},
        {std::errc::read_only_file_system, "Der Datenträger ist schreibgeschützt"},
        {std::errc::no_such_file_or_directory, "Datei oder Ordner nicht gefunden"},
        {std::errc::not_a_directory, "Statt eines Ordners liegt dort eine Datei"},
        {std::errc::is_a_directory, "Statt einer Datei liegt dort ein Ordner"},
        {std::errc::file_too_large, "Die Datei ist zu groß"},
        {std::errc::filename_too_long, "Der Dateiname ist zu lang"},
        {std::errc::io_error, "Lese- oder Schreibfehler des Datenträgers"},
    }};
    const auto* found = std::ranges::find_if(rows, [this](const Row& row) { return code == row.code; });
    return found == rows.end() ? code.message() : std::string(found->text);
}

namespace Files {

fs::path unfinishedName(const fs::path& file) {
    return folderOf(file) / fmt::format(".{}.{}{}", file.filename().string(), newUuid(), unfinishedSuffix);
}

FileResult<BigText> readBig(const fs::path& file, std::size_t limitInBytes) {
    const Descriptor in(openToRead(file));
    if (!in) return lastFailure();
    struct stat status{};
    if (::fstat(in.number(), &status) != 0) return lastFailure();
    if (!S_ISREG(status.st_mode)) return failure(ENOTSUP);
    if (static_cast<std::size_t>(status.st_size) > limitInBytes) return failure(EFBIG);

    constexpr std::size_t leastRoom = 64U << 10U;
    // One byte more than the reported size shows whether the file has grown.
    auto room = static_cast<std::size_t>(status.st_size) + 1;
    BigText content;
    content.reserve(room + leastRoom);
    while (true) {
        const auto before = content.size();
        const auto count = ::read(in.number(), content.extend(room), room);
        content.shrink(before + static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return lastFailure();
        if (count == 0) return content;
        if (content.size() > limitInBytes) return failure(EFBIG);
        room = std::max(room - static_cast<std::size_t>(count), leastRoom);
    }
}

FileResult<std::string> read(const fs::path& file, std::size_t limitInBytes) {
    auto content = readBig(file, limitInBytes);
    if (!content) return std::unexpected(content.error());
    return std::string(*content);
}

FileResult<> writeAtomically(const fs::path& file, std::string_view content, Durability durability) {
    return replace(file, durability, [content](int out) { return writeAll(out, content); });
}

FileResult<> makeFolder(const fs::path& folder) {
    std::error_code error;
    if (fs::is_directory(folder, error)) return {};
    if (folder.has_parent_path() && folder.parent_path() != folder) {
        if (auto parents = makeFolder(folder.parent_path()); !parents) return parents;
    }
    if (::mkdir(folder.c_str(), ownerFolder) == 0) return {};
    const int code = errno;
    if (code != EEXIST) return failure(code);
    if (fs::is_directory(folder, error)) return {}; // Made by someone else meanwhile.
    return failure(ENOTDIR);
}

FileResult<OpenFile> OpenFile::open(const fs::path& file) {
    OpenFile opened(openToRead(file));
    if (opened.descriptor_ < 0) return lastFailure();
    struct stat status{};
    if (::fstat(opened.descriptor_, &status) != 0) return lastFailure();
    if (!S_ISREG(status.st_mode)) return failure(ENOTSUP);
    return opened;
}

OpenFile::OpenFile(OpenFile&& other) noexcept : descriptor_(std::exchange(other.descriptor_, -1)) {}

OpenFile::~OpenFile() {
    if (descriptor_ >= 0) ::close(descriptor_);
}

FileResult<> OpenFile::copyTo(const fs::path& to) const {
    return replace(to, Durability::Synced, [in = descriptor_](int out) {
        std::array<char, 64U << 10U> buffer; // NOLINT(cppcoreguidelines-pro-type-member-init)
        off_t offset = 0;
        while (true) {
            const auto count = ::pread(in, buffer.data(), buffer.size(), offset);
            if (count < 0 && errno == EINTR) continue;
            if (count <= 0) return count == 0;
            if (!writeAll(out, {buffer.data(), static_cast<std::size_t>(count)})) return false;
            offset += count;
        }
    });
}

FileResult<> copy(const fs::path& from, const fs::path& to) {
    const auto in = OpenFile::open(from);
    if (!in) return std::unexpected(in.error());
    return in->copyTo(to);
}

FileResult<> link(const fs::path& from, const fs::path& to) {
    std::error_code ignored;
    if (!fs::is_regular_file(from, ignored)) return failure(ENOTSUP);
    if (::link(from.c_str(), to.c_str()) != 0) return lastFailure();
    return {};
}

void makeDurable(const fs::path& file) {
    const Descriptor open(openToRead(file));
    if (open) ::fsync(open.number());
    syncFolder(folderOf(file));
}

FileResult<> move(const fs::path& from, const fs::path& to) {
    if (::rename(from.c_str(), to.c_str()) == 0) {
        syncFolder(folderOf(to));
        return {};
    }
    if (errno != EXDEV) return lastFailure();
    if (auto copied = Files::copy(from, to); !copied) return copied;
    // The content is safe at its new place now; the original would only be a second copy.
    ::unlink(from.c_str());
    return {};
}

bool remove(const fs::path& file) { return ::unlink(file.c_str()) == 0 || errno == ENOENT; }

std::optional<Date> modificationTime(const fs::path& file) {
    struct stat status{};
    if (::stat(file.c_str(), &status) != 0) return std::nullopt;
    return Date(std::chrono::duration_cast<Date::duration>(std::chrono::seconds(status.st_mtim.tv_sec) +
                                                           std::chrono::nanoseconds(status.st_mtim.tv_nsec)));
}

FileResult<fs::path> setAside(const fs::path& file, Date now) {
    const auto stem = fmt::format("{} beschädigt {}", file.stem().string(), localFileStamp(now));
    auto place = unusedName(folderOf(file), stem, file.extension().string());
    if (::rename(file.c_str(), place.c_str()) != 0) return lastFailure();
    syncFolder(folderOf(file));
    return place;
}

fs::path unusedName(const fs::path& folder, const std::string& stem, const std::string& extension) {
    auto candidate = stem;
    for (int number = 2; isStemTaken(folder, candidate); ++number) {
        candidate = fmt::format("{} ({})", stem, number);
    }
    return folder / (candidate + extension);
}

void removeUnfinishedWrites(const fs::path& folder) {
    const auto limit = std::chrono::system_clock::now() - std::chrono::minutes(1);
    std::error_code error;
    std::vector<fs::path> left;
    for (fs::directory_iterator entry(folder, error), end; !error && entry != end; entry.increment(error)) {
        const auto& file = entry->path();
        if (!isUnfinishedName(file.filename().string())) continue;
        if (const auto changed = modificationTime(file); changed && *changed < limit) left.push_back(file);
    }
    for (const auto& file : left) Files::remove(file);
}

} // namespace Files

} // namespace querlin
