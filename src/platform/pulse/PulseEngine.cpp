#include "platform/pulse/PulseEngine.h"

#include <cmath>

#include <fmt/format.h>

namespace querlin {

namespace {

constexpr double pieceInSeconds = 0.02;
/// As long as no tap is there sound is kept, for the moment in which one tap replaces another.
constexpr double longestKeptInSeconds = 10;
constexpr Duration attemptInterval = std::chrono::milliseconds(100);
constexpr int mostAttempts = 20;

/// A headset may take a while to change over to recording.
constexpr Duration longestOpening = std::chrono::seconds(2);
constexpr auto noAnswer = "Der Tondienst antwortet nicht.";

bool isReady(const pa_stream* stream) {
    return stream != nullptr && pa_stream_get_state(stream) == PA_STREAM_READY;
}

} // namespace

void PulseEngine::EndStream::operator()(pa_stream* stream) const {
    pa_stream_set_read_callback(stream, nullptr, nullptr);
    pa_stream_set_state_callback(stream, nullptr, nullptr);
    pa_stream_disconnect(stream);
    pa_stream_unref(stream);
}

PulseEngine::PulseEngine(MainQueue& queue, PulseConnection& connection) :
    queue_(queue), connection_(connection) {
    postLook_ = [this, post = lifetime_.onMain(queue, [this] { lookAround(); })] {
        if (!isLookDue_.exchange(true)) post();
    };
    listening_ = connection.listen([this] {
        if (stream_) postLook_();
    });
}

PulseEngine::~PulseEngine() {
    listening_.reset();
    stop();
}

void PulseEngine::reset() {
    chosen_.reset();
    known_ = {};
}

std::expected<void, std::string> PulseEngine::setDevice(std::uint32_t deviceID) {
    const auto inputs = connection_.inputs();
    const auto* source = inputs->at(deviceID - 1);
    if (deviceID == 0 || !source || source->isMonitor)
        return std::unexpected("Das Mikrofon ist nicht mehr da.");
    chosen_ = source->name;
    return {};
}

/// The source that is set, as long as it is there, or the default.
const PulseSource* PulseEngine::presentSource(const PulseInputs& inputs) const {
    const auto* source = chosen_ ? inputs.named(*chosen_) : nullptr;
    return source ? source : inputs.defaultMicrophone();
}

AudioFormat PulseEngine::inputFormat() {
    const auto inputs = connection_.inputs();
    const auto* source = presentSource(*inputs);
    return source ? source->format : AudioFormat();
}

void PulseEngine::installTap(std::uint32_t frames, AudioFormat format, Tap tap) {
    const PulseConnection::Lock lock(connection_);
    if (format != format_) gathered_.clear();
    format_ = format;
    samplesPerBuffer_ = std::size_t{frames} * format.channelCount;
    tap_ = std::move(tap);
}

void PulseEngine::removeTap() {
    const PulseConnection::Lock lock(connection_);
    if (!tap_) return;
    if (isReady(stream_.get())) read(stream_.get());
    handOn(gathered_.size());
    tap_ = nullptr;
}

std::expected<void, std::string> PulseEngine::start() {
    const auto inputs = connection_.inputs();
    const auto* source = presentSource(*inputs);
    const PulseConnection::Lock lock(connection_);
    if (auto failure = std::exchange(openingFailure_, std::nullopt))
        return std::unexpected(std::move(*failure));
    if (!source) return std::unexpected(connection_.context() ? "Kein Mikrofon da." : noAnswer);
    const bool goesOn = isGood() && streamSource_ == source->name && streamFormat_ == format_;
    if (!goesOn) {
        auto opened = open(*source);
        if (!opened) return std::unexpected(opened.error());
        // The new one listens already: nothing is missing between the two.
        if (isReady(stream_.get()) && streamFormat_ == format_) read(stream_.get());
        stream_ = std::move(*opened);
        streamSource_ = source->name;
        streamFormat_ = format_;
        const auto onRead = [](pa_stream* stream, std::size_t, void* self) {
            static_cast<PulseEngine*>(self)->read(stream);
        };
        pa_stream_set_read_callback(stream_.get(), onRead, this);
        if (isReady(stream_.get())) read(stream_.get());
    }
    known_ = {source->name, source->format, true};
    attempts_ = 0;
    return {};
}

void PulseEngine::stop() {
    nextAttempt_.reset();
    openingLimit_.reset();
    known_ = {};
    const PulseConnection::Lock lock(connection_);
    stream_.reset();
    openingFailure_.reset();
    gathered_.clear();
}

bool PulseEngine::isRunning() const {
    const PulseConnection::Lock lock(connection_);
    return isGood();
}

/// Ready, or on its way there.
bool PulseEngine::isGood() const {
    return stream_ && PA_STREAM_IS_GOOD(pa_stream_get_state(stream_.get())) && !openingFailure_;
}

/// Waits for the answer that comes within milliseconds. A stream that takes longer opens while the program
/// goes on; if it fails then, the observer is called, and the next start says why.
std::expected<PulseEngine::Stream, std::string> PulseEngine::open(const PulseSource& source) {
    auto* const context = connection_.context();
    if (!context) return std::unexpected(noAnswer);
    const auto channels = static_cast<std::uint8_t>(format_.channelCount);
    const pa_sample_spec spec{PA_SAMPLE_FLOAT32NE,
                              static_cast<std::uint32_t>(std::lround(format_.sampleRate)), channels};
    // The source's own places: between others the server mixes, which leaves nothing of what has no place.
    pa_channel_map map = source.places;
    if (map.channels != channels) pa_channel_map_init_extend(&map, channels, PA_CHANNEL_MAP_DEFAULT);
    Stream stream(pa_stream_new(context, "Diktat", &spec, &map));
    if (!stream) return std::unexpected("Dieses Tonformat lässt sich nicht aufnehmen.");
    wasReady_ = false;
    pa_stream_set_state_callback(
        stream.get(),
        [](pa_stream* changed, void* self) { static_cast<PulseEngine*>(self)->streamChanged(changed); },
        this);
    constexpr auto unset = static_cast<std::uint32_t>(-1);
    const auto piece = pa_usec_to_bytes(static_cast<pa_usec_t>(pieceInSeconds * 1e6), &spec);
    const pa_buffer_attr buffering{unset, unset, unset, unset, static_cast<std::uint32_t>(piece)};
    // NOLINTNEXTLINE(clang-analyzer-optin.core.EnumCastOutOfRange): flags are passed as their sum.
    constexpr auto flags = static_cast<pa_stream_flags_t>(PA_STREAM_ADJUST_LATENCY | PA_STREAM_DONT_MOVE);
    pa_stream_connect_record(stream.get(), source.name.c_str(), &buffering, flags);
    connection_.wait([&stream] { return pa_stream_get_state(stream.get()) != PA_STREAM_CREATING; });
    if (!PA_STREAM_IS_GOOD(pa_stream_get_state(stream.get())))
        return std::unexpected(std::exchange(openingFailure_, std::nullopt).value_or(noAnswer));
    if (!isReady(stream.get())) openingLimit_ = queue_.after(longestOpening, [this] { giveUpOpening(); });
    return stream;
}

/// On the loop.
void PulseEngine::streamChanged(pa_stream* stream) {
    connection_.wakeUp();
    wasReady_ = wasReady_ || isReady(stream);
    if (PA_STREAM_IS_GOOD(pa_stream_get_state(stream))) return;
    if (!wasReady_) {
        openingFailure_ = fmt::format("Das Mikrofon lässt sich nicht öffnen ({}).",
                                      pa_strerror(pa_context_errno(pa_stream_get_context(stream))));
    }
    postLook_();
}

void PulseEngine::giveUpOpening() {
    {
        const PulseConnection::Lock lock(connection_);
        if (!stream_ || pa_stream_get_state(stream_.get()) != PA_STREAM_CREATING) return;
        openingFailure_ = noAnswer;
    }
    postLook_();
}

// What happens to the input in use

Registration PulseEngine::observeConfigurationChange(std::function<void()> changed) {
    changed_ = std::move(changed);
    return Registration([this] { changed_ = nullptr; });
}

PulseEngine::Situation PulseEngine::situation() {
    const auto inputs = connection_.inputs();
    const auto* source = presentSource(*inputs);
    const bool streams = isRunning();
    return source ? Situation{source->name, source->format, streams} : Situation{{}, {}, streams};
}

/// An input that has gone may be back in a moment: a server that is restarted, a plug that is moved.
void PulseEngine::lookAround() {
    isLookDue_ = false;
    if (!changed_ || known_ == Situation() || nextAttempt_) return;
    const auto now = situation();
    if (now == known_) return;
    if (!now.format.isUsable() && attempts_++ < mostAttempts) {
        nextAttempt_ = queue_.after(attemptInterval, [this] {
            nextAttempt_.reset();
            lookAround();
        });
        return;
    }
    attempts_ = 0;
    known_ = now;
    const auto changed = changed_; // It may withdraw the observer, or end the engine.
    changed();
}

// On the loop

void PulseEngine::read(pa_stream* stream) {
    while (pa_stream_readable_size(stream) > 0) {
        const void* samples = nullptr;
        std::size_t bytes = 0;
        if (pa_stream_peek(stream, &samples, &bytes) < 0 || bytes == 0) return;
        take(static_cast<const float*>(samples), bytes / sizeof(float));
        pa_stream_drop(stream);
    }
}

/// Null for a hole in the stream, which becomes silence, so that time stays true.
void PulseEngine::take(const float* samples, std::size_t count) {
    if (streamFormat_ != format_) return; // The tap is for the stream that the next start makes.
    if (!tap_ && static_cast<double>(gathered_.size()) >
                     longestKeptInSeconds * format_.sampleRate * format_.channelCount) {
        return;
    }
    if (samples) {
        gathered_.insert(gathered_.end(), samples, samples + count);
    } else {
        gathered_.insert(gathered_.end(), count, 0.0F);
    }
    while (tap_ && gathered_.size() >= samplesPerBuffer_) handOn(samplesPerBuffer_);
}

void PulseEngine::handOn(std::size_t count) {
    if (count == 0 || !tap_) return;
    tap_({format_, std::span<const float>(gathered_).first(count)});
    gathered_.erase(gathered_.begin(), gathered_.begin() + static_cast<std::ptrdiff_t>(count));
}

} // namespace querlin
