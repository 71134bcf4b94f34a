#include "platform/pulse/PulseSoundPlayer.h"

#include "foundation/Release.h"
#include "state/DiagnosticsLog.h"

#include <optional>
#include <utility>

#include <fmt/format.h>
#include <pulse/pulseaudio.h>
#include <sndfile.h>

namespace querlin {

namespace {

/// In the order of `FeedbackSound`.
constexpr std::array<const char*, 3> names = {"Tink", "Pop", "Funk"};
/// What comes later says something wrong.
constexpr Duration latest = std::chrono::seconds(1);
constexpr sf_count_t mostFrames = 1U << 20U;

using Properties = std::unique_ptr<pa_proplist, Release<pa_proplist_free>>;

Instant now() { return std::chrono::steady_clock::now(); }

/// The cache is one for all programs of the server.
std::string cacheName(std::size_t sound) { return fmt::format("querlin-{}", names.at(sound)); }

struct Wave {
    pa_sample_spec format;
    std::vector<std::int16_t> samples;
};

std::optional<Wave> readWave(const std::filesystem::path& path) {
    SF_INFO info{};
    const std::unique_ptr<SNDFILE, Release<sf_close>> file(sf_open(path.c_str(), SFM_READ, &info));
    if (!file || info.frames <= 0 || info.frames > mostFrames) return std::nullopt;
    const pa_sample_spec format{PA_SAMPLE_S16NE, static_cast<std::uint32_t>(info.samplerate),
                                static_cast<std::uint8_t>(info.channels)};
    if (!pa_sample_spec_valid(&format)) return std::nullopt;
    Wave wave{format, std::vector<std::int16_t>(static_cast<std::size_t>(info.frames) * format.channels)};
    if (sf_readf_short(file.get(), wave.samples.data(), info.frames) != info.frames) return std::nullopt;
    return wave;
}

} // namespace

void PulseSoundPlayer::FreeLoop::operator()(pa_threaded_mainloop* loop) const {
    pa_threaded_mainloop_stop(loop);
    pa_threaded_mainloop_free(loop);
}

void PulseSoundPlayer::EndContext::operator()(pa_context* context) const {
    pa_context_set_state_callback(context, nullptr, nullptr);
    pa_context_disconnect(context);
    pa_context_unref(context);
}

void PulseSoundPlayer::EndStream::operator()(pa_stream* stream) const {
    pa_stream_set_state_callback(stream, nullptr, nullptr);
    pa_stream_disconnect(stream);
    pa_stream_unref(stream);
}

bool PulseSoundPlayer::Order::isLate() const { return now() - asked > latest; }

PulseSoundPlayer::PulseSoundPlayer(std::filesystem::path sounds, std::string server) :
    folder_(std::move(sounds)), server_(std::move(server)), loop_(pa_threaded_mainloop_new()) {
    pa_threaded_mainloop_set_name(loop_.get(), "sounds");
    pa_threaded_mainloop_start(loop_.get());
}

PulseSoundPlayer::~PulseSoundPlayer() {
    pa_threaded_mainloop_lock(loop_.get());
    samples_ = {};
    context_.reset();
    pa_threaded_mainloop_unlock(loop_.get());
}

void PulseSoundPlayer::play(FeedbackSound sound) {
    pa_threaded_mainloop_lock(loop_.get());
    waiting_.push_back({static_cast<std::size_t>(sound), now()});
    pa_mainloop_api_once(
        pa_threaded_mainloop_get_api(loop_.get()),
        [](pa_mainloop_api*, void* self) { static_cast<PulseSoundPlayer*>(self)->serve(); }, this);
    pa_threaded_mainloop_unlock(loop_.get());
}

bool PulseSoundPlayer::isReady() const {
    return context_ && pa_context_get_state(context_.get()) == PA_CONTEXT_READY;
}

void PulseSoundPlayer::serve() {
    std::erase_if(waiting_, [](const Order& order) { return order.isLate(); });
    if (isReady()) {
        playWaiting();
    } else if (!context_ || !PA_CONTEXT_IS_GOOD(pa_context_get_state(context_.get()))) {
        connect();
    }
}

void PulseSoundPlayer::connect() {
    samples_ = {};
    playing_.clear();
    const Properties properties(pa_proplist_new());
    pa_proplist_sets(properties.get(), PA_PROP_APPLICATION_NAME, "Querlin");
    pa_proplist_sets(properties.get(), PA_PROP_APPLICATION_ICON_NAME, "audio-input-microphone");
    context_.reset(
        pa_context_new_with_proplist(pa_threaded_mainloop_get_api(loop_.get()), nullptr, properties.get()));
    pa_context_set_state_callback(
        context_.get(),
        [](pa_context*, void* self) { static_cast<PulseSoundPlayer*>(self)->contextChanged(); }, this);
    const char* server = server_.empty() ? nullptr : server_.c_str();
    if (pa_context_connect(context_.get(), server, PA_CONTEXT_NOAUTOSPAWN, nullptr) < 0) contextChanged();
}

void PulseSoundPlayer::contextChanged() {
    if (isReady()) {
        for (std::size_t sound = 0; sound < names.size(); ++sound) upload(sound);
        isDamageLogged_ = true;
    } else if (!PA_CONTEXT_IS_GOOD(pa_context_get_state(context_.get()))) {
        waiting_.clear();
        if (!std::exchange(isSilenceLogged_, true))
            DiagnosticsLog::note("audio",
                                 fmt::format("Der Tondienst ist nicht erreichbar ({}): keine Signaltöne.",
                                             pa_strerror(pa_context_errno(context_.get()))));
    }
}

void PulseSoundPlayer::upload(std::size_t sound) {
    auto wave = readWave(folder_ / fmt::format("{}.wav", names.at(sound)));
    if (!wave) {
        if (!isDamageLogged_)
            DiagnosticsLog::note(
                "audio", fmt::format("Ein Signalton fehlt oder ist beschädigt: {}.wav.", names.at(sound)));
        return;
    }
    const Properties properties(pa_proplist_new());
    pa_proplist_sets(properties.get(), PA_PROP_MEDIA_ROLE, "event");
    auto& sample = samples_.at(sound);
    sample.player = this;
    sample.samples = std::move(wave->samples);
    sample.upload.reset(pa_stream_new_with_proplist(context_.get(), cacheName(sound).c_str(), &wave->format,
                                                    nullptr, properties.get()));
    if (!sample.upload) return;
    pa_stream_set_state_callback(
        sample.upload.get(),
        [](pa_stream*, void* data) {
            auto& changed = *static_cast<Sample*>(data);
            changed.player->uploadChanged(changed);
        },
        &sample);
    pa_stream_connect_upload(sample.upload.get(), sample.samples.size() * sizeof(std::int16_t));
}

void PulseSoundPlayer::uploadChanged(Sample& sample) {
    const auto state = pa_stream_get_state(sample.upload.get());
    if (state == PA_STREAM_READY) {
        pa_stream_write(sample.upload.get(), sample.samples.data(),
                        sample.samples.size() * sizeof(std::int16_t), nullptr, 0, PA_SEEK_RELATIVE);
        pa_stream_finish_upload(sample.upload.get());
        sample.samples = {};
    } else if (state == PA_STREAM_TERMINATED) {
        sample.isCached = true;
        playWaiting();
    }
}

/// A server that hangs gets no more orders: it would play them all when it wakes up.
void PulseSoundPlayer::playWaiting() {
    const bool isHung = !playing_.empty() && now() - playing_.front() > latest;
    std::erase_if(waiting_, [&](const Order& order) { return isHung || order.isLate(); });
    const auto confirmed = [](pa_context*, std::uint32_t, void* self) {
        auto& playing = static_cast<PulseSoundPlayer*>(self)->playing_;
        if (!playing.empty()) playing.pop_front();
    };
    std::erase_if(waiting_, [&](const Order& order) {
        if (!samples_.at(order.sound).isCached) return false;
        auto* operation =
            pa_context_play_sample_with_proplist(context_.get(), cacheName(order.sound).c_str(), nullptr,
                                                 PA_VOLUME_INVALID, nullptr, confirmed, this);
        if (operation) {
            pa_operation_unref(operation);
            playing_.push_back(now());
        }
        return true;
    });
}

} // namespace querlin
