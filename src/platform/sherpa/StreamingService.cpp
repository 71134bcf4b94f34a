#include "platform/sherpa/StreamingService.h"

#include "platform/sherpa/StreamingAnalyzer.h"

#include "state/DiagnosticsLog.h"

#include <algorithm>
#include <set>
#include <utility>

#include <fmt/format.h>

namespace querlin {

namespace fs = std::filesystem;

namespace {

constexpr auto libraryName = "libsherpa-onnx-c-api.so";
constexpr auto noModel = "Es ist kein Modell für die Streaming-Erkennung installiert.";
constexpr auto noDownload = "Modelle werden von Hand installiert.";

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

} // namespace

/// What lies in the models' folder, with what the helper has found out about it.
struct StreamingService::Found {
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

StreamingService::StreamingService(Setup setup) :
    setup_(std::move(setup)), found_(std::make_shared<Found>()), ends_(std::make_shared<SerialQueue>()) {}
StreamingService::~StreamingService() = default;

void StreamingService::preload() {
    const auto request = requestFor("");
    if (request) processFor(*request)->preload();
}

std::vector<ModelReport> StreamingService::models() {
    found_->lookAgain(setup_.models, library());
    const std::scoped_lock guard(found_->lock);
    return found_->reports;
}

std::optional<fs::path> StreamingService::library() const {
    for (const auto& folder : setup_.libraries) {
        std::error_code failure;
        if (!folder.empty() && fs::is_regular_file(folder / libraryName, failure))
            return folder / libraryName;
    }
    return std::nullopt;
}

/// For any language if the locale is empty.
std::optional<RecogniserProtocol::OpenRequest> StreamingService::requestFor(const std::string& locale) {
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
StreamingService::processFor(const RecogniserProtocol::OpenRequest& request) {
    if (process_ && openRequest_ == request) return process_;
    openRequest_ = request;
    process_ = std::make_shared<RecogniserProcess>(RecogniserProcess::Setup{
        .program = setup_.program,
        .model = request,
        .longestSilence = setup_.longestSilence,
        .onOpened =
            [weak = std::weak_ptr(found_), request](const std::expected<void, std::string>& result) {
                const auto found = weak.lock();
                if (found && !result) found->reject(request, result.error());
            },
    });
    return process_;
}

bool StreamingService::isHere() { return requestFor("").has_value(); }

std::vector<std::string> StreamingService::supportedLocales() {
    std::set<std::string> locales;
    if (!hasLibrary()) return {};
    for (const auto& report : models()) {
        if (!report.model) continue;
        locales.insert(report.model->language);
        for (const auto* locale : {"de-DE", "de-AT", "de-CH", "en-US", "en-GB"}) {
            if (report.model->serves(locale)) locales.insert(locale);
        }
    }
    return {locales.begin(), locales.end()};
}

SpeechAnalysisService::AssetStatus StreamingService::assetStatus(const std::string& locale) {
    return requestFor(locale) ? AssetStatus::installed : AssetStatus::unsupported;
}

std::expected<void, std::string> StreamingService::downloadAndInstall(const std::string&) {
    return std::unexpected(noDownload);
}

std::shared_ptr<SpeechAnalyzer> StreamingService::analyzer(const std::string& locale,
                                                           SpeechAnalysisObserver observer) {
    const auto request = requestFor(locale);
    return std::make_shared<StreamingAnalyzer>(request ? processFor(*request) : nullptr, noModel, ends_,
                                               std::move(observer));
}

fs::path StreamingService::libraryOfBuild() { return QUERLIN_SHERPA_LIBRARY; }

} // namespace querlin
