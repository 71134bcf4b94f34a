#include "platform/sherpa/StreamingEngine.h"

#include "state/DiagnosticsLog.h"

#include <algorithm>
#include <set>
#include <utility>

#include <fmt/format.h>

namespace querlin {

namespace fs = std::filesystem;

namespace {

constexpr auto libraryName = "libsherpa-onnx-c-api.so";

/// Changes with every file in the folder and its folders.
std::string stampOf(const fs::path& folder) {
    std::set<std::string> rows;
    std::error_code failure;
    const auto add = [&](const fs::directory_entry& entry) {
        const auto size = entry.is_regular_file(failure) ? entry.file_size(failure) : 0;
        rows.insert(fmt::format("{}/{}/{}", entry.path().string(), size,
                                entry.last_write_time(failure).time_since_epoch().count()));
    };
    for (const auto& model : fs::directory_iterator(folder, failure)) {
        add(model);
        for (const auto& file : fs::directory_iterator(model.path(), failure)) add(file);
    }
    return fmt::format("{}", fmt::join(rows, "\n"));
}

/// Keeps its model's process, also when another model has taken over.
class ModelSession final : public RecognitionSession {
public:
    ModelSession(std::shared_ptr<RecogniserProcess> process, std::unique_ptr<RecognitionSession> session) :
        process_(std::move(process)), session_(std::move(session)) {}

    void append(const AudioBuffer& buffer) override { session_->append(buffer); }
    void finish() override { session_->finish(); }
    void cancel() override { session_->cancel(); }

private:
    std::shared_ptr<RecogniserProcess> process_;
    std::unique_ptr<RecognitionSession> session_;
};

} // namespace

/// What lies in the models' folder, with what the helper has found out about it.
struct StreamingEngine::Found {
    std::mutex lock;
    std::string stamp = "-"; ///< of no folder
    std::vector<ModelReport> reports;

    void lookAgain(const fs::path& folder, const std::optional<fs::path>& library) {
        std::error_code failure;
        auto now = stampOf(folder);
        if (library)
            now += fmt::format("\n{}", fs::last_write_time(*library, failure).time_since_epoch().count());
        const std::scoped_lock guard(lock);
        if (now == stamp) return;
        stamp = std::move(now);
        reports = StreamingModels::inspectAll(folder);
        for (const auto& report : reports) {
            DiagnosticsLog::note(
                "speech", report.model ? fmt::format("Modell „{}“ gefunden.", report.name)
                                       : fmt::format("Modell „{}“: {}", report.name, report.model.error()));
        }
    }
    void reject(const RecogniserProtocol::OpenRequest& request, const std::string& reason) {
        const std::scoped_lock guard(lock);
        const auto tokens = request.settings.find("tokens");
        for (auto& report : reports) {
            if (!report.model || report.model->request.settings["tokens"] != tokens->second) continue;
            DiagnosticsLog::note("speech", fmt::format("Modell „{}“: {}", report.name, reason));
            report.model = std::unexpected(reason);
        }
    }
};

StreamingEngine::StreamingEngine(Setup setup) : setup_(std::move(setup)), found_(std::make_shared<Found>()) {}
StreamingEngine::~StreamingEngine() = default;

void StreamingEngine::preload() {
    const auto request = requestFor("");
    if (request) processFor(*request)->preload();
}

std::vector<ModelReport> StreamingEngine::models() {
    found_->lookAgain(setup_.models, library());
    const std::scoped_lock guard(found_->lock);
    return found_->reports;
}

std::optional<fs::path> StreamingEngine::library() const {
    for (const auto& folder : setup_.libraries) {
        std::error_code failure;
        if (!folder.empty() && fs::is_regular_file(folder / libraryName, failure))
            return folder / libraryName;
    }
    return std::nullopt;
}

/// For any language if the locale is empty.
std::optional<RecogniserProtocol::OpenRequest> StreamingEngine::requestFor(const std::string& locale) {
    const auto file = library();
    if (!file) return std::nullopt;
    for (auto& report : models()) {
        if (!report.model || (!locale.empty() && !report.model->serves(locale))) continue;
        auto request = std::move(report.model->request);
        request.settings["library"] = *file;
        return request;
    }
    return std::nullopt;
}

std::shared_ptr<RecogniserProcess>
StreamingEngine::processFor(const RecogniserProtocol::OpenRequest& request) {
    std::shared_ptr<RecogniserProcess> former; // Goes when the lock is free again.
    const std::scoped_lock guard(lock_);
    if (process_ && openRequest_ == request) return process_;
    openRequest_ = request;
    former = std::exchange(process_, std::make_shared<RecogniserProcess>(RecogniserProcess::Setup{
                                         .program = setup_.program,
                                         .model = request,
                                         .makeConverter = setup_.makeConverter,
                                         .longestSilence = setup_.longestSilence,
                                         .onOpened =
                                             [weak = std::weak_ptr(found_),
                                              request](const std::expected<void, std::string>& result) {
                                                 const auto found = weak.lock();
                                                 if (found && !result) found->reject(request, result.error());
                                             },
                                     }));
    return process_;
}

std::shared_ptr<RecogniserProcess> StreamingEngine::process() {
    const std::scoped_lock guard(lock_);
    return process_;
}

bool StreamingEngine::isHere(const std::string& locale) { return requestFor(locale).has_value(); }

std::expected<std::unique_ptr<RecognitionSession>, std::string>
StreamingEngine::begin(const std::string& locale, std::vector<std::string> words,
                       RecognitionObserver observer) {
    const auto request = requestFor(locale);
    if (!request) return std::unexpected("Es ist kein Modell für die Streaming-Erkennung installiert.");
    auto process = processFor(*request);
    auto session = process->begin(std::move(words), std::move(observer));
    return std::make_unique<ModelSession>(std::move(process), std::move(session));
}

fs::path StreamingEngine::libraryOfBuild() { return QUERLIN_SHERPA_LIBRARY; }

} // namespace querlin
