// Makes the two files with the law texts, and searches them.

#include "lawcorpus/ArchiveFolder.h"

#include "foundation/Files.h"
#include "foundation/RunLoop.h"
#include "foundation/ThreadPool.h"
#include "legal/CorpusContainer.h"
#include "legal/LegalCorpus.h"
#include "legal/LegalUpdateService.h"
#include "platform/curl/CurlHttpClient.h"
#include "state/DiagnosticsLog.h"
#include "textchain/LawInsertion.h"
#include "textchain/SpokenLawReference.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include <stdlib.h> // NOLINT(modernize-deprecated-headers): mkdtemp

#include <fmt/format.h>
#include <fmt/ranges.h>

namespace querlin {
namespace {

namespace fs = std::filesystem;
using Arguments = std::span<const std::string_view>;

constexpr std::string_view usage =
    "Legt die beiden Dateien mit den Gesetzestexten an und sieht in sie hinein.\n"
    "\n"
    "  lawcorpus empty MANIFEST ZIELORDNER            alle Gesetze des Manifests, noch ohne Paragraphen\n"
    "  lawcorpus make MANIFEST ZIELORDNER ARCHIVE     aus einem Ordner mit <slug>/xml.zip je Gesetz\n"
    "  lawcorpus make MANIFEST ZIELORDNER             von den Adressen des Manifests\n"
    "  lawcorpus search ORDNER ANFRAGE…               sucht wie das Nachschlagefenster\n"
    "  lawcorpus insert ORDNER DIKTAT…                führt gesprochene Einfügebefehle aus\n";

int fail(std::string_view message) {
    fmt::print(stderr, "{}\n", message);
    return EXIT_FAILURE;
}

/// Prints the service's log lines as they come.
class ShownLog final : public LogSink {
public:
    void write(std::string_view category, std::string_view message) override {
        if (category == "gesetze") fmt::print("{}\n", message);
        (void)std::fflush(stdout);
    }
    void clear() override {}
};

/// A folder for intermediate files, removed at the end.
class WorkFolder {
public:
    WorkFolder() {
        auto name = (fs::temp_directory_path() / "lawcorpus-XXXXXX").string();
        if (::mkdtemp(name.data())) path_ = name;
    }
    ~WorkFolder() {
        std::error_code ignored;
        if (!path_.empty()) fs::remove_all(path_, ignored);
    }
    WorkFolder(const WorkFolder&) = delete;
    WorkFolder& operator=(const WorkFolder&) = delete;
    const fs::path& path() const { return path_; }

private:
    fs::path path_;
};

int makeEmpty(const fs::path& manifestFile, const fs::path& folder) {
    std::error_code ignored;
    fs::create_directories(folder, ignored);
    fs::copy_file(manifestFile, folder / LegalCorpusStore::manifestName, fs::copy_options::overwrite_existing,
                  ignored);
    const auto manifest = LegalCorpusStore({}, folder).bundledManifest();
    if (!manifest) return fail(fmt::format("{} ist kein Gesetzesmanifest.", manifestFile.string()));

    LegalCorpusFile corpus{manifest->generated, {}};
    for (const auto& row : manifest->laws) {
        auto& law = corpus.laws.emplace_back();
        law.abbr = law.name = row.abbr;
        law.tier = row.tier;
        law.slug = row.slug;
        law.source = row.source;
    }
    const auto container = CorpusContainer::deflate(corpus.toJson());
    const auto written =
        Files::writeAtomically(folder / LegalCorpusStore::corpusName, container.value_or(""));
    return written ? EXIT_SUCCESS : fail(written.error().description());
}

struct Progress {
    void operator()(const LegalUpdateStage::Checking& stage) const {
        fmt::print("[{}/{}] frage nach …\n", stage.done + 1, stage.total);
    }
    void operator()(const LegalUpdateStage::Downloading& stage) const {
        fmt::print("[{}/{}] lade {} …\n", stage.done + 1, stage.total, stage.law);
    }
    void operator()(const LegalUpdateStage::Applying&) const { fmt::print("Schreibe …\n"); }
    void operator()(const auto&) const {}
};

int make(const fs::path& manifestFile, const fs::path& folder, HttpClient& client, RunLoop& loop,
         ThreadPool& pool) {
    const WorkFolder work;
    if (makeEmpty(manifestFile, work.path()) != EXIT_SUCCESS) return EXIT_FAILURE;
    SystemClock clock;
    const Runtime runtime{loop, clock, pool};
    PreferencesStore preferences(work.path() / "Einstellungen.json", runtime);
    AppSettings settings(preferences);
    const LegalCorpusStore store(fs::absolute(folder), work.path());
    LegalCorpus corpus(store, runtime);
    LegalUpdateService service(settings, store, corpus, client, runtime);

    int result = EXIT_SUCCESS;
    const auto following = service.stage.subscribe(
        [&](const LegalUpdateService::Stage& stage) {
            std::visit(Progress(), stage);
            if (const auto* failed = std::get_if<LegalUpdateStage::Failed>(&stage))
                result = fail(failed->message);
            if (!service.isRunning()) loop.quit();
        },
        FirstValue::Skip);
    loop.post([&service] { service.checkNow(); });
    loop.run();
    if (result != EXIT_SUCCESS) return result;

    std::vector<std::string> missing;
    for (const auto& law : corpus.laws()) {
        if (law.sections.empty()) missing.emplace_back(law.abbr);
    }
    for (const auto& line : corpus.standSummary()) fmt::print("  {}\n", line);
    if (!missing.empty()) fmt::print("Ohne Text geblieben: {}\n", fmt::join(missing, ", "));
    return EXIT_SUCCESS;
}

int search(LegalCorpus& corpus, const std::string& query) {
    const auto hits = corpus.search(query);
    for (const auto& [law, section] : hits)
        fmt::print("{}  {}\n", section.citation(law), section.title.view());
    fmt::print("{} Treffer\n", hits.size());
    return EXIT_SUCCESS;
}

int insert(LegalCorpus& corpus, const std::string& dictation) {
    using namespace SpokenLawReference;
    fmt::print("{}\n", normalizeReferences(applyInsertCommands(dictation, corpus)));
    return EXIT_SUCCESS;
}

int lawcorpus(Arguments arguments) {
    const auto command = arguments.empty() ? std::string_view() : arguments.front();
    const auto words = arguments.size() > 2 ? fmt::format("{}", fmt::join(arguments.subspan(2), " ")) : "";
    if (command == "empty" && arguments.size() == 3) return makeEmpty(arguments[1], arguments[2]);
    if (command == "make" && (arguments.size() == 3 || arguments.size() == 4)) {
        ShownLog log;
        const DiagnosticsLog::Installation installation(log);
        RunLoop loop;
        ThreadPool pool(1);
        if (arguments.size() == 4) {
            ArchiveFolder client{fs::path(arguments[3])};
            return make(arguments[1], arguments[2], client, loop, pool);
        }
        CurlHttpClient client(loop);
        return make(arguments[1], arguments[2], client, loop, pool);
    }
    if ((command == "search" || command == "insert") && !words.empty()) {
        const LegalCorpusStore store(arguments[1], {});
        RunLoop loop;
        SystemClock clock;
        ThreadPool pool(1);
        LegalCorpus corpus(store, {loop, clock, pool});
        if (!corpus.loadIfNeeded())
            return fail(fmt::format("Kein lesbarer Gesetzesbestand in {}.", arguments[1]));
        return command == "search" ? search(corpus, words) : insert(corpus, words);
    }
    fmt::print(stderr, "{}", usage);
    return EXIT_FAILURE;
}

} // namespace
} // namespace querlin

int main(int count, char** arguments) {
    const std::vector<std::string_view> words(arguments + 1, arguments + count);
    return querlin::lawcorpus(words);
}
