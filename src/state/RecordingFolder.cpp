#include "state/RecordingFolder.h"

#include "foundation/Uuid.h"

#include <algorithm>
#include <cerrno>
#include <set>
#include <utility>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

namespace querlin {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view prefix = "dictation-";

fs::path withExtension(fs::path file, const char* extension) { return file.replace_extension(extension); }

/// Opens the lock file and takes the lock without waiting; -1, with `errno`, if another process has it.
int takeLock(const fs::path& file) {
    const int descriptor = ::open(file.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK, 0600);
    if (descriptor < 0) return -1;
    // A file system without locks must not keep anybody from dictating.
    if (::flock(descriptor, LOCK_EX | LOCK_NB) == 0 || errno != EWOULDBLOCK) return descriptor;
    ::close(descriptor);
    errno = EWOULDBLOCK;
    return -1;
}

bool isEmptyOrMissing(const fs::path& file) {
    std::error_code error;
    const auto size = fs::file_size(file, error);
    return error || size == 0;
}

} // namespace

RecordingFile::RecordingFile(RecordingFile&& other) noexcept :
    audio_(std::move(other.audio_)), lock_(std::exchange(other.lock_, -1)) {}

RecordingFile& RecordingFile::operator=(RecordingFile&& other) noexcept {
    if (this != &other) {
        closeLock();
        audio_ = std::move(other.audio_);
        lock_ = std::exchange(other.lock_, -1);
    }
    return *this;
}

RecordingFile::~RecordingFile() { closeLock(); }

void RecordingFile::closeLock() {
    if (lock_ >= 0) ::close(std::exchange(lock_, -1));
}

fs::path RecordingFile::textFile() const { return withExtension(audio_, ".txt"); }
fs::path RecordingFile::lockFile() const { return withExtension(audio_, ".lock"); }

std::string RecordingFile::text() const { return Files::read(textFile()).value_or(""); }

void RecordingFile::keepText(std::string_view text) const {
    if (lock_ < 0) return;
    // Guards against the end of this process, several times a minute: no waiting for the disk.
    (void)Files::writeAtomically(textFile(), text, Files::Durability::Unsynced);
}

void RecordingFile::discard() {
    if (lock_ < 0) return;
    Files::remove(audio_);
    Files::remove(textFile());
    Files::remove(lockFile());
    closeLock();
}

FileResult<> RecordingFile::moveAudio(const fs::path& to) {
    if (auto moved = Files::move(audio_, to); !moved) return moved;
    Files::remove(textFile());
    Files::remove(lockFile());
    closeLock();
    return {};
}

FileResult<RecordingFile> RecordingFolder::begin() const {
    if (auto made = Files::makeFolder(folder_); !made) return std::unexpected(made.error());
    const auto audio = folder_ / (std::string(prefix) + newUuid() + ".caf");
    // Locked under the name of an unfinished write first: under its own name the file is never seen
    // without its lock, so nobody can take it for a remnant.
    const auto unlisted = Files::unfinishedName(withExtension(audio, ".lock"));
    const int lock = takeLock(unlisted);
    if (lock < 0) return std::unexpected(FileError{std::error_code(errno, std::generic_category())});
    RecordingFile recording(audio, lock);
    if (::rename(unlisted.c_str(), recording.lockFile().c_str()) != 0) {
        const FileError error{std::error_code(errno, std::generic_category())};
        Files::remove(unlisted);
        return std::unexpected(error);
    }
    return recording;
}

std::vector<RecordingFile> RecordingFolder::leftBehind() const {
    Files::removeUnfinishedWrites(folder_);
    std::set<fs::path> candidates; // by the audio's name, whichever of the files is there
    std::error_code error;
    for (fs::directory_iterator entry(folder_, error), end; !error && entry != end; entry.increment(error)) {
        const auto& file = entry->path();
        const auto stem = file.stem().string();
        if (!stem.starts_with(prefix) || !canonicalUuid(stem.substr(prefix.size()))) continue;
        candidates.insert(withExtension(file, ".caf"));
    }

    std::vector<RecordingFile> found;
    for (const auto& audio : candidates) {
        const int lock = takeLock(withExtension(audio, ".lock"));
        if (lock < 0) continue;
        RecordingFile recording(audio, lock);
        if (isEmptyOrMissing(audio) && isEmptyOrMissing(recording.textFile())) {
            recording.discard();
        } else {
            found.push_back(std::move(recording));
        }
    }
    std::ranges::stable_sort(found, {}, [](const RecordingFile& recording) {
        const auto audioTime = Files::modificationTime(recording.audio());
        return audioTime ? *audioTime : Files::modificationTime(recording.textFile()).value_or(Date());
    });
    return found;
}

} // namespace querlin
