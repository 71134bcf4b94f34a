#include "platform/pulse/SoundOutput.h"

#include "state/DiagnosticsLog.h"

#include <utility>

#include <fmt/format.h>

namespace querlin {

namespace {

constexpr Duration latest = std::chrono::seconds(1);
/// What the server has at hand of a sound.
constexpr pa_usec_t aheadInMicroseconds = 40'000;
/// A server that hangs gets no more streams.
constexpr std::size_t mostAtOnce = 8;

struct FreeProperties {
    void operator()(pa_proplist* properties) const { pa_proplist_free(properties); }
};
using Properties = std::unique_ptr<pa_proplist, FreeProperties>;

} // namespace

void SoundOutput::EndContext::operator()(pa_context* context) const {
    pa_context_set_state_callback(context, nullptr, nullptr);
    pa_context_disconnect(context);
    pa_context_unref(context);
}

void SoundOutput::EndStream::operator()(pa_stream* stream) const {
    pa_stream_set_state_callback(stream, nullptr, nullptr);
    pa_stream_disconnect(stream);
    pa_stream_unref(stream);
}

bool SoundOutput::Order::isLate() const { return std::chrono::steady_clock::now() - asked > latest; }

SoundOutput::SoundOutput(std::string server) : server_(std::move(server)), thread_([this] { serve(); }) {}

SoundOutput::~SoundOutput() {
    {
        const std::scoped_lock guard(mutex_);
        isEnding_ = true;
    }
    wakeUp_.ring();
    thread_.join();
}

void SoundOutput::play(std::shared_ptr<const WavSound> sound, std::string name) {
    {
        const std::scoped_lock guard(mutex_);
        orders_.push_back({std::move(sound), std::move(name), std::chrono::steady_clock::now()});
    }
    wakeUp_.ring();
}

void SoundOutput::serve() {
    loop_.reset(pa_mainloop_new());
    const auto* api = pa_mainloop_get_api(loop_.get());
    const auto onOrder = [](pa_mainloop_api*, pa_io_event*, int, pa_io_event_flags_t, void* self) {
        static_cast<SoundOutput*>(self)->takeOrders();
    };
    auto* event =
        api->io_new(pa_mainloop_get_api(loop_.get()), wakeUp_.descriptor(), PA_IO_EVENT_INPUT, onOrder, this);
    connect();
    pa_mainloop_run(loop_.get(), nullptr);
    playing_.clear();
    context_.reset();
    api->io_free(event);
    loop_.reset();
}

void SoundOutput::takeOrders() {
    wakeUp_.clear();
    std::unique_lock guard(mutex_);
    auto orders = std::exchange(orders_, {});
    const bool isEnding = isEnding_;
    guard.unlock();

    playing_.remove_if([](const Playing& playing) { return playing.isOver; });
    for (auto& order : orders) waiting_.push_back(std::move(order));
    if (isEnding) {
        pa_mainloop_quit(loop_.get(), 0);
    } else if (isReady()) {
        startWaiting();
    } else {
        connect();
    }
}

bool SoundOutput::isReady() const {
    return context_ && pa_context_get_state(context_.get()) == PA_CONTEXT_READY;
}

void SoundOutput::connect() {
    if (context_ && PA_CONTEXT_IS_GOOD(pa_context_get_state(context_.get()))) return;
    playing_.clear();
    const Properties properties(pa_proplist_new());
    pa_proplist_sets(properties.get(), PA_PROP_APPLICATION_NAME, "Querlin");
    pa_proplist_sets(properties.get(), PA_PROP_APPLICATION_ICON_NAME, "audio-input-microphone");
    context_.reset(pa_context_new_with_proplist(pa_mainloop_get_api(loop_.get()), nullptr, properties.get()));
    pa_context_set_state_callback(
        context_.get(), [](pa_context*, void* self) { static_cast<SoundOutput*>(self)->contextChanged(); },
        this);
    const char* server = server_.empty() ? nullptr : server_.c_str();
    if (pa_context_connect(context_.get(), server, PA_CONTEXT_NOAUTOSPAWN, nullptr) < 0) contextChanged();
}

void SoundOutput::contextChanged() {
    if (isReady()) {
        startWaiting();
    } else if (!PA_CONTEXT_IS_GOOD(pa_context_get_state(context_.get()))) {
        waiting_.clear();
        if (!std::exchange(isSilenceNoted_, true))
            DiagnosticsLog::note("audio",
                                 fmt::format("Der Tondienst ist nicht erreichbar ({}): keine Signaltöne.",
                                             pa_strerror(pa_context_errno(context_.get()))));
    }
}

void SoundOutput::startWaiting() {
    auto waiting = std::exchange(waiting_, {});
    for (auto& order : waiting) {
        if (!order.isLate() && playing_.size() < mostAtOnce) start(std::move(order));
    }
}

void SoundOutput::start(Order order) {
    const auto& sound = *order.sound;
    const pa_sample_spec spec{PA_SAMPLE_S16LE, sound.samplesPerSecond, sound.channelCount};
    const Properties properties(pa_proplist_new());
    pa_proplist_sets(properties.get(), PA_PROP_MEDIA_ROLE, "event");
    auto& playing = playing_.emplace_back(*this, std::move(order));
    playing.stream.reset(pa_stream_new_with_proplist(context_.get(), playing.order.name.c_str(), &spec,
                                                     nullptr, properties.get()));
    if (!playing.stream) {
        end(playing);
        return;
    }
    pa_stream_set_state_callback(
        playing.stream.get(),
        [](pa_stream*, void* data) {
            auto& changed = *static_cast<Playing*>(data);
            changed.output.streamChanged(changed);
        },
        &playing);
    // Heard soon, and from the first sample on; the server keeps the rest, which comes at once.
    constexpr auto unset = static_cast<std::uint32_t>(-1);
    const auto ahead = static_cast<std::uint32_t>(pa_usec_to_bytes(aheadInMicroseconds, &spec));
    const pa_buffer_attr buffering{unset, ahead, unset, unset, unset};
    if (pa_stream_connect_playback(playing.stream.get(), nullptr, &buffering, PA_STREAM_ADJUST_LATENCY,
                                   nullptr, nullptr) < 0)
        end(playing);
}

void SoundOutput::streamChanged(Playing& playing) {
    const auto state = pa_stream_get_state(playing.stream.get());
    if (state == PA_STREAM_CREATING) return;
    if (state != PA_STREAM_READY || playing.order.isLate()) {
        end(playing);
        return;
    }
    const auto& samples = playing.order.sound->samples;
    pa_stream_write(playing.stream.get(), samples.data(), samples.size(), nullptr, 0, PA_SEEK_RELATIVE);
    const auto onPlayed = [](pa_stream*, int, void* data) {
        auto& played = *static_cast<Playing*>(data);
        played.output.end(played);
    };
    if (auto* operation = pa_stream_drain(playing.stream.get(), onPlayed, &playing)) {
        pa_operation_unref(operation);
    } else {
        end(playing);
    }
}

/// Swept up outside the stream's own callbacks.
void SoundOutput::end(Playing& playing) const {
    playing.isOver = true;
    wakeUp_.ring();
}

} // namespace querlin
