#include "platform/pulse/PulseConnection.h"

#include <fmt/format.h>

namespace querlin {

namespace {

/// A call of ours waits several times: with the short waits behind the first one it stays below two seconds.
constexpr pa_usec_t longestWaitInMicroseconds = 1'500'000;
/// For a server that has just kept us waiting in vain, and how long it counts as one.
constexpr pa_usec_t shortWaitInMicroseconds = 100'000;
constexpr pa_usec_t mistrustInMicroseconds = 5'000'000;

struct FreeProperties {
    void operator()(pa_proplist* properties) const { pa_proplist_free(properties); }
};

PulseSource described(const pa_source_info& info) {
    return {info.index,
            info.name ? info.name : "",
            info.description ? info.description : "",
            {static_cast<double>(info.sample_spec.rate), info.sample_spec.channels},
            info.channel_map,
            info.monitor_of_sink != PA_INVALID_INDEX};
}

} // namespace

PulseConnection::PulseConnection(std::string server) :
    server_(std::move(server)), loop_(pa_threaded_mainloop_new()) {
    pa_threaded_mainloop_set_name(loop_.get(), "pulse");
    pa_threaded_mainloop_start(loop_.get());
}

PulseConnection::~PulseConnection() {
    const Lock lock(*this);
    context_.reset();
}

std::expected<pa_context*, std::string> PulseConnection::connect() {
    if (context_ && pa_context_get_state(context_.get()) == PA_CONTEXT_READY) return context_.get();
    const std::unique_ptr<pa_proplist, FreeProperties> properties(pa_proplist_new());
    pa_proplist_sets(properties.get(), PA_PROP_APPLICATION_NAME, "Querlin");
    pa_proplist_sets(properties.get(), PA_PROP_APPLICATION_ICON_NAME, "audio-input-microphone");
    context_.reset(
        pa_context_new_with_proplist(pa_threaded_mainloop_get_api(loop_.get()), nullptr, properties.get()));
    watchContext();
    const char* server = server_.empty() ? nullptr : server_.c_str();
    // No server of our own making: one that waits for its first client is started by connecting to it.
    pa_context_connect(context_.get(), server, PA_CONTEXT_NOAUTOSPAWN, nullptr);
    const auto isDecided = [this] {
        const auto state = pa_context_get_state(context_.get());
        return state == PA_CONTEXT_READY || !PA_CONTEXT_IS_GOOD(state);
    };
    if (!wait(isDecided)) {
        context_.reset();
        return std::unexpected("Der Tondienst antwortet nicht.");
    }
    if (pa_context_get_state(context_.get()) != PA_CONTEXT_READY) {
        return std::unexpected(fmt::format("Der Tondienst ist nicht erreichbar ({}).",
                                           pa_strerror(pa_context_errno(context_.get()))));
    }
    constexpr auto events = PA_SUBSCRIPTION_MASK_SOURCE | PA_SUBSCRIPTION_MASK_SERVER;
    finish(
        pa_context_subscribe(context_.get(), static_cast<pa_subscription_mask_t>(events), nullptr, nullptr));
    return context_.get();
}

void PulseConnection::watchContext() {
    pa_context_set_state_callback(
        context_.get(),
        [](pa_context* context, void* self) {
            auto& connection = *static_cast<PulseConnection*>(self);
            connection.wakeUp();
            if (!PA_CONTEXT_IS_GOOD(pa_context_get_state(context))) connection.tellListeners();
        },
        this);
    pa_context_set_subscribe_callback(
        context_.get(),
        [](pa_context*, pa_subscription_event_type_t, std::uint32_t, void* self) {
            static_cast<PulseConnection*>(self)->tellListeners();
        },
        this);
}

bool PulseConnection::wait(const std::function<bool()>& reached) {
    struct TimeOut {
        PulseConnection& connection;
        bool isOver = false;
    } timeOut{*this};
    const auto longest = isHung() ? shortWaitInMicroseconds : longestWaitInMicroseconds;
    auto* timer = pa_context_rttime_new(
        context_.get(), pa_rtclock_now() + longest,
        [](pa_mainloop_api*, pa_time_event*, const timeval*, void* data) {
            auto& waiting = *static_cast<TimeOut*>(data);
            waiting.isOver = true;
            waiting.connection.wakeUp();
        },
        &timeOut);
    while (!reached() && !timeOut.isOver) pa_threaded_mainloop_wait(loop_.get());
    const auto* api = pa_threaded_mainloop_get_api(loop_.get());
    api->time_free(timer);
    const bool isReached = reached();
    hungUntil_ = isReached ? 0 : pa_rtclock_now() + mistrustInMicroseconds;
    return isReached;
}

/// One that doesn't end in time is cancelled: then its callback isn't called any more.
void PulseConnection::finish(pa_operation* operation) {
    if (!operation) return;
    pa_operation_set_state_callback(
        operation, [](pa_operation*, void* self) { static_cast<PulseConnection*>(self)->wakeUp(); }, this);
    if (!wait([operation] { return pa_operation_get_state(operation) != PA_OPERATION_RUNNING; })) {
        pa_operation_cancel(operation);
    }
    pa_operation_unref(operation);
}

template<class Ask>
std::vector<PulseSource> PulseConnection::askForSources(Ask ask) {
    const Lock lock(*this);
    std::vector<PulseSource> found;
    const auto context = connect();
    if (!context) return found;
    const pa_source_info_cb_t take = [](pa_context*, const pa_source_info* info, int, void* list) {
        if (info) static_cast<std::vector<PulseSource>*>(list)->push_back(described(*info));
    };
    finish(ask(*context, take, &found));
    return found;
}

std::vector<PulseSource> PulseConnection::sources() {
    return askForSources([](pa_context* context, pa_source_info_cb_t take, void* list) {
        return pa_context_get_source_info_list(context, take, list);
    });
}

std::optional<PulseSource> PulseConnection::source(std::uint32_t index) {
    const auto found = askForSources([index](pa_context* context, pa_source_info_cb_t take, void* list) {
        return pa_context_get_source_info_by_index(context, index, take, list);
    });
    return found.empty() ? std::nullopt : std::optional(found.front());
}

std::optional<PulseSource> PulseConnection::source(const std::string& name) {
    const auto found = askForSources([&name](pa_context* context, pa_source_info_cb_t take, void* list) {
        return pa_context_get_source_info_by_name(context, name.c_str(), take, list);
    });
    return found.empty() ? std::nullopt : std::optional(found.front());
}

std::optional<PulseSource> PulseConnection::defaultMicrophone() {
    auto found = source("@DEFAULT_SOURCE@");
    if (found && found->isMonitor) found.reset();
    return found;
}

Registration PulseConnection::listen(std::function<void()> event) {
    const Lock lock(*this);
    const auto place = listeners_.insert(listeners_.end(), std::move(event));
    return Registration([this, place] {
        const Lock guard(*this);
        listeners_.erase(place);
    });
}

void PulseConnection::tellListeners() {
    for (const auto& listener : listeners_) listener();
}

} // namespace querlin
