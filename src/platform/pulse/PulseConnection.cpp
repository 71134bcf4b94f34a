#include "platform/pulse/PulseConnection.h"

#include <algorithm>
#include <utility>

namespace querlin {

namespace {

/// Servers answer within milliseconds; one that doesn't mustn't hold the program up.
constexpr pa_usec_t longestWaitInMicroseconds = 250'000;
/// Between attempts to reach a server that isn't there: soon at first, then seldom.
constexpr pa_usec_t firstRetryInMicroseconds = 100'000;
constexpr pa_usec_t lastRetryInMicroseconds = 5'000'000;

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

const PulseSource* PulseInputs::named(const std::string& name) const {
    const auto found = std::ranges::find(sources, name, &PulseSource::name);
    return found == sources.end() ? nullptr : &*found;
}

const PulseSource* PulseInputs::at(std::uint32_t index) const {
    const auto found = std::ranges::find(sources, index, &PulseSource::index);
    return found == sources.end() ? nullptr : &*found;
}

const PulseSource* PulseInputs::defaultMicrophone() const {
    const auto* source = named(defaultName);
    return source && !source->isMonitor ? source : nullptr;
}

PulseConnection::PulseConnection(std::string server) :
    server_(std::move(server)), loop_(pa_threaded_mainloop_new()), retryDelay_(firstRetryInMicroseconds) {
    pa_threaded_mainloop_set_name(loop_.get(), "pulse");
    pa_threaded_mainloop_start(loop_.get());
    const Lock lock(*this);
    connect();
}

PulseConnection::~PulseConnection() {
    const Lock lock(*this);
    if (retry_) pa_threaded_mainloop_get_api(loop_.get())->time_free(retry_);
    context_.reset();
}

// The connection, on the loop or with its lock held

void PulseConnection::connect() {
    const std::unique_ptr<pa_proplist, FreeProperties> properties(pa_proplist_new());
    pa_proplist_sets(properties.get(), PA_PROP_APPLICATION_NAME, "Querlin");
    pa_proplist_sets(properties.get(), PA_PROP_APPLICATION_ICON_NAME, "audio-input-microphone");
    context_.reset(
        pa_context_new_with_proplist(pa_threaded_mainloop_get_api(loop_.get()), nullptr, properties.get()));
    isAsking_ = isStale_ = false;
    pa_context_set_state_callback(
        context_.get(),
        [](pa_context*, void* self) { static_cast<PulseConnection*>(self)->contextChanged(); }, this);
    pa_context_set_subscribe_callback(
        context_.get(),
        [](pa_context*, pa_subscription_event_type_t, std::uint32_t, void* self) {
            static_cast<PulseConnection*>(self)->ask();
        },
        this);
    const char* server = server_.empty() ? nullptr : server_.c_str();
    // No server of our own making: one that waits for its first client is started by connecting to it.
    if (pa_context_connect(context_.get(), server, PA_CONTEXT_NOAUTOSPAWN, nullptr) < 0) connectLater();
}

void PulseConnection::contextChanged() {
    const auto state = pa_context_get_state(context_.get());
    if (state == PA_CONTEXT_READY) {
        retryDelay_ = firstRetryInMicroseconds;
        constexpr auto events = PA_SUBSCRIPTION_MASK_SOURCE | PA_SUBSCRIPTION_MASK_SERVER;
        if (auto* operation = pa_context_subscribe(
                context_.get(), static_cast<pa_subscription_mask_t>(events), nullptr, nullptr))
            pa_operation_unref(operation);
        ask();
    } else if (!PA_CONTEXT_IS_GOOD(state)) {
        publish({});
        connectLater();
    }
    wakeUp();
}

void PulseConnection::connectLater() {
    if (retry_) return;
    retry_ = pa_context_rttime_new(
        context_.get(), pa_rtclock_now() + retryDelay_,
        [](pa_mainloop_api* api, pa_time_event* timer, const timeval*, void* self) {
            auto& connection = *static_cast<PulseConnection*>(self);
            api->time_free(timer);
            connection.retry_ = nullptr;
            connection.connect();
        },
        this);
    retryDelay_ = std::min(retryDelay_ + retryDelay_ / 3, lastRetryInMicroseconds);
}

pa_context* PulseConnection::context() const {
    return pa_context_get_state(context_.get()) == PA_CONTEXT_READY ? context_.get() : nullptr;
}

bool PulseConnection::wait(const std::function<bool()>& reached) {
    struct TimeOut {
        PulseConnection& connection;
        bool isOver = false;
    } timeOut{*this};
    auto* timer = pa_context_rttime_new(
        context_.get(), pa_rtclock_now() + longestWaitInMicroseconds,
        [](pa_mainloop_api*, pa_time_event*, const timeval*, void* data) {
            auto& waiting = *static_cast<TimeOut*>(data);
            waiting.isOver = true;
            waiting.connection.wakeUp();
        },
        &timeOut);
    while (!reached() && !timeOut.isOver) pa_threaded_mainloop_wait(loop_.get());
    pa_threaded_mainloop_get_api(loop_.get())->time_free(timer);
    return reached();
}

// What the server has

/// Asks for the sources, then for the default. What changes meanwhile is asked for again.
void PulseConnection::ask() {
    if (std::exchange(isAsking_, true)) {
        isStale_ = true;
        return;
    }
    draft_ = {};
    auto* operation = pa_context_get_source_info_list(
        context_.get(),
        [](pa_context*, const pa_source_info* info, int end, void* self) {
            auto& connection = *static_cast<PulseConnection*>(self);
            if (info) connection.draft_.sources.push_back(described(*info));
            if (end != 0) connection.askForDefault();
        },
        this);
    if (operation) pa_operation_unref(operation);
}

void PulseConnection::askForDefault() {
    auto* operation = pa_context_get_server_info(
        context_.get(),
        [](pa_context*, const pa_server_info* info, void* self) {
            auto& connection = *static_cast<PulseConnection*>(self);
            if (info && info->default_source_name) connection.draft_.defaultName = info->default_source_name;
            connection.answered();
        },
        this);
    if (operation) pa_operation_unref(operation);
}

void PulseConnection::answered() {
    isAsking_ = false;
    hasAnswered_ = true;
    publish(std::move(draft_));
    if (std::exchange(isStale_, false)) ask();
}

void PulseConnection::publish(PulseInputs inputs) {
    {
        const std::scoped_lock guard(inputsLock_);
        if (inputs.sources != inputs_->sources || inputs.defaultName != inputs_->defaultName)
            inputs_ = std::make_shared<const PulseInputs>(std::move(inputs));
    }
    wakeUp();
    notifyListeners();
}

std::shared_ptr<const PulseInputs> PulseConnection::inputs() {
    if (!std::exchange(hasWaited_, true)) {
        const Lock lock(*this);
        wait([this] { return hasAnswered_ || !PA_CONTEXT_IS_GOOD(pa_context_get_state(context_.get())); });
    }
    const std::scoped_lock guard(inputsLock_);
    return inputs_;
}

Registration PulseConnection::listen(std::function<void()> event) {
    const Lock lock(*this);
    const auto place = listeners_.insert(listeners_.end(), std::move(event));
    return Registration([this, place] {
        const Lock guard(*this);
        listeners_.erase(place);
    });
}

void PulseConnection::notifyListeners() {
    for (const auto& listener : listeners_) listener();
}

} // namespace querlin
