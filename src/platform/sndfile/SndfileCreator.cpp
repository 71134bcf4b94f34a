#include "platform/sndfile/SndfileCreator.h"

#include "foundation/Files.h"

#include <cerrno>
#include <limits>

#include <fcntl.h>
#include <sndfile.h>
#include <unistd.h>

namespace querlin {

namespace {

struct CloseSound {
    void operator()(SNDFILE* sound) const { sf_close(sound); }
};
using Sound = std::unique_ptr<SNDFILE, CloseSound>;

std::string systemError(int error) {
    return FileError{std::error_code(error, std::generic_category())}.description();
}

class SndfileWriter final : public AudioFileWriter {
public:
    SndfileWriter(Sound sound, AudioFormat format) : sound_(std::move(sound)), format_(format) {}

    std::expected<void, std::string> write(const AudioBuffer& buffer) override {
        if (buffer.format != format_)
            return std::unexpected("Der Ton hat ein anderes Format als die Aufnahme.");
        const auto count = static_cast<sf_count_t>(buffer.samples.size());
        errno = 0;
        if (sf_write_float(sound_.get(), buffer.samples.data(), count) == count) return {};
        return std::unexpected(errno != 0 ? systemError(errno) : sf_strerror(sound_.get()));
    }

private:
    Sound sound_;
    AudioFormat format_;
};

} // namespace

std::expected<std::unique_ptr<AudioFileWriter>, std::string>
SndfileCreator::create(const std::filesystem::path& path, AudioFormat format) {
    SF_INFO info{};
    info.samplerate = static_cast<int>(format.sampleRate);
    info.channels = static_cast<int>(format.channelCount);
    info.format = SF_FORMAT_CAF | SF_FORMAT_FLOAT;
    if (!format.isUsable() || sf_format_check(&info) == SF_FALSE) {
        return std::unexpected("Dieses Tonformat lässt sich nicht aufzeichnen.");
    }
    // Of our own making, so that nobody else may read it.
    const int file = ::open(path.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
    if (file < 0) return std::unexpected(systemError(errno));
    errno = 0;
    Sound sound(sf_open_fd(file, SFM_WRITE, &info, SF_TRUE)); // It closes the file also where it fails.
    if (!sound) return std::unexpected(errno != 0 ? systemError(errno) : sf_strerror(nullptr));
    // The header has the true length after each write: a recording that is cut off can be read.
    sf_command(sound.get(), SFC_SET_UPDATE_HEADER_AUTO, nullptr, SF_TRUE);
    return std::make_unique<SndfileWriter>(std::move(sound), format);
}

} // namespace querlin
