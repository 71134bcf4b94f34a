#include "legal/LegalUpdateService.h"

#include "foundation/Waiting.h"
#include "legal/LegalUpdateError.h"
#include "state/DiagnosticsLog.h"
#include "state/Product.h"

#include <algorithm>
#include <typeinfo>

#include <fmt/format.h>
#include <fmt/ranges.h>

namespace querlin {

using namespace LegalUpdateStage;

namespace {

constexpr Duration headTimeout = std::chrono::seconds(20);
constexpr Duration getTimeout = std::chrono::seconds(120);
constexpr std::string_view lastModifiedHeader = "Last-Modified";

void note(std::string_view line) { DiagnosticsLog::note("gesetze", line); }
void trace(std::string_view line) { DiagnosticsLog::trace("gesetze", line); }

/// An absolute http or https address with a host, as far as can be seen without asking for it.
bool isAddress(std::string_view source) {
    for (const std::string_view scheme : {"https://", "http://"}) {
        if (!source.starts_with(scheme)) continue;
        const auto host = source.substr(scheme.size());
        const bool isPlain =
            std::ranges::all_of(host, [](unsigned char byte) { return byte > ' ' && byte < 0x7F; });
        return isPlain && !host.empty() && host.front() != '/';
    }
    return false;
}

HttpRequest request(HttpRequest::Method method, std::string address, Duration timeout) {
    return {method, std::move(address), timeout, fmt::format("{}/{}", Product::name, Product::version)};
}

} // namespace

LegalUpdateService::LegalUpdateService(AppSettings& settings, const LegalCorpusStore& store,
                                       LegalCorpus& corpus, HttpClient& client, Runtime runtime) :
    settings_(settings), store_(store), corpus_(corpus), client_(client), runtime_(runtime) {
    if (auto manifest = store_.currentManifest()) laws.set(std::move(manifest->laws));
}

void LegalUpdateService::checkIfDue() {
    if (!settings_.updateLawsAutomatically.get()) {
        trace("Selbsttätige Prüfung ist abgeschaltet.");
    } else if (!isDue()) {
        trace("Prüfung noch nicht fällig.");
    } else {
        start(Initiator::timer);
    }
}

void LegalUpdateService::checkNow() { start(Initiator::user); }

bool LegalUpdateService::isDue() const {
    const auto last = settings_.lawsLastChecked.get();
    if (!last || runtime_.clock.now() - *last >= checkInterval) return true;
    // A program without law texts is of little use: it tries again at each start.
    return std::ranges::any_of(laws.get(), [](const auto& row) { return row.sectionCount == 0; });
}

void LegalUpdateService::start(Initiator initiator) {
    if (!isRunning_) tasks_.start(run(initiator));
}

Task<> LegalUpdateService::run(Initiator initiator) {
    isRunning_ = true;
    Stage end;
    try {
        end = co_await update(initiator);
    } catch (const std::exception& fault) {
        note(fmt::format("Interner Fehler: {}", typeid(fault).name()));
        end = Failed{"Bei der Aktualisierung trat ein interner Fehler auf."};
    }
    isRunning_ = false;
    stage.set(std::move(end));
}

Task<LegalUpdateService::Stage> LegalUpdateService::update(Initiator initiator) {
    auto manifest = store_.currentManifest();
    if (!manifest) co_return Failed{"Kein Gesetzesmanifest gefunden."};

    auto answers = co_await ask(*manifest);
    if (answers.changed.empty()) co_return nothingNew(initiator, answers.missing, manifest->laws.size());

    auto load = [file = store_.corpusURL()] {
        return file ? loadCorpus(*file) : std::unexpected(std::string());
    };
    auto present = co_await background(runtime_, std::move(load));
    if (!present) co_return Failed{"Der vorhandene Gesetzesbestand ließ sich nicht lesen."};
    LegalPair pair{std::move(*present), std::move(*manifest)};

    auto updated = co_await download(answers, pair);
    if (updated.empty()) {
        recordIfComplete(answers.missing);
        co_return Failed{"Keine der neuen Fassungen ließ sich laden."};
    }

    stage.set(Applying{});
    auto rows = pair.manifest.laws;
    auto write = [&store = store_, pair = std::move(pair), now = runtime_.clock.now()]() mutable {
        return store.write(std::move(pair), now);
    };
    const auto written = co_await background(runtime_, std::move(write));
    if (!written) co_return Failed{"Speichern fehlgeschlagen: " + written.error()};
    auto reload = [&corpus = corpus_] { return corpus.reload(); };
    co_await background(runtime_, std::move(reload));
    recordIfComplete(answers.missing);
    laws.set(std::move(rows));
    note(fmt::format("Aktualisiert: {}", fmt::join(updated, ", ")));
    co_return Updated{std::move(updated)};
}

Task<LegalUpdateService::Answers> LegalUpdateService::ask(const LegalManifest& manifest) {
    const auto total = manifest.laws.size();
    stage.set(Checking{0, total});
    note(fmt::format("Prüfe {} Gesetze auf neue Fassungen…", total));
    Answers answers;
    for (std::size_t done = 0; done < total; ++done) {
        const auto& row = manifest.laws[done];
        stage.set(Checking{done, total});
        const auto value = co_await lastModified(row);
        if (!value) {
            ++answers.missing;
            note(fmt::format("{}: nicht erreichbar – {}", row.abbr, value.error().description));
        } else if (*value != row.lastModified) {
            note(fmt::format("{}: neue Fassung ({}).", row.abbr, *value));
            answers.changed.push_back(row);
        }
    }
    co_return answers;
}

LegalUpdateService::Stage LegalUpdateService::nothingNew(Initiator initiator, std::size_t missing,
                                                         std::size_t total) {
    recordIfComplete(missing);
    if (missing > 0 && missing == total) return Failed{"Das Gesetzesportal ist nicht erreichbar."};
    if (missing > 0)
        return Failed{fmt::format(
            "Für {} von {} Gesetzen kam keine Antwort vom Gesetzesportal, die übrigen sind aktuell.", missing,
            total)};
    note("Alle Gesetzesstände aktuell.");
    if (initiator == Initiator::user) return UpToDate{};
    return Idle{};
}

void LegalUpdateService::recordIfComplete(std::size_t missing) {
    if (missing == 0) settings_.recordLawCheck(runtime_.clock.now());
}

Task<std::vector<std::string>> LegalUpdateService::download(Answers& answers, LegalPair& pair) {
    std::vector<std::string> updated;
    for (std::size_t done = 0; done < answers.changed.size(); ++done) {
        const auto& row = answers.changed[done];
        stage.set(Downloading{row.abbr, done, answers.changed.size()});
        auto response = co_await fetch(row);
        if (!response) {
            ++answers.missing;
            note(fmt::format("{} fehlgeschlagen: {}", row.abbr, response.error().description));
            continue;
        }
        auto fresh = co_await edition(row, std::move(*response));
        if (!fresh) {
            note(fmt::format("{} fehlgeschlagen: {}", row.abbr, fresh.error()));
            continue;
        }
        note(fmt::format("{} erneuert: {} Paragraphen.", row.abbr, fresh->law.sections.size()));
        updated.push_back(row.abbr);
        pair.put(std::move(*fresh));
    }
    co_return updated;
}

Task<std::expected<HttpResponse, HttpError>> LegalUpdateService::fetch(const LegalManifestEntry& entry) {
    return client_.send(request(HttpRequest::Method::get, entry.source, getTimeout));
}

/// Whatever the status: an error page is no archive.
Task<std::expected<LawEdition, std::string>> LegalUpdateService::edition(LegalManifestEntry entry,
                                                                         HttpResponse response) {
    std::string lastModified(response.header(lastModifiedHeader).value_or(entry.lastModified));
    auto read = [entry = std::move(entry), archive = std::move(response.body)] {
        return lawFromArchive(entry, archive);
    };
    auto law = co_await background(runtime_, std::move(read));
    if (!law) co_return std::unexpected(std::move(law.error()));
    LawEdition fresh{std::move(*law), std::move(lastModified)};
    co_return fresh;
}

Task<std::expected<std::string, HttpError>>
LegalUpdateService::lastModified(const LegalManifestEntry& entry) {
    HttpError fault{LegalUpdateError{LegalUpdateError::Kind::badSource, entry.abbr}.description()};
    if (!isAddress(entry.source)) co_return std::unexpected(std::move(fault));
    const auto response =
        co_await client_.send(request(HttpRequest::Method::head, entry.source, headTimeout));
    if (!response) co_return std::unexpected(response.error());
    std::string age(response->header(lastModifiedHeader).value_or(""));
    if (!age.empty()) co_return age;
    fault.description = fmt::format("Antwort ohne Stand (Status {}).", response->status);
    co_return std::unexpected(std::move(fault));
}

} // namespace querlin
