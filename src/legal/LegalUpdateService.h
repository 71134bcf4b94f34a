#pragma once

#include "foundation/Published.h"
#include "foundation/Runtime.h"
#include "foundation/TaskGroup.h"
#include "legal/HttpClient.h"
#include "legal/LawEdition.h"
#include "legal/LegalCorpus.h"
#include "legal/LegalCorpusStore.h"
#include "state/AppSettings.h"

#include <cstddef>
#include <expected>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace querlin {

/// How far an update has come, or how the last one ended.
namespace LegalUpdateStage {

/// Nothing to show.
struct Idle {
    bool operator==(const Idle&) const = default;
};
/// Asking the portal; so many laws of so many are done.
struct Checking {
    std::size_t done = 0;
    std::size_t total = 0;
    bool operator==(const Checking&) const = default;
};
/// Fetching a law; so many of the changed ones are done.
struct Downloading {
    std::string law;
    std::size_t done = 0;
    std::size_t total = 0;
    bool operator==(const Downloading&) const = default;
};
/// Writing the files.
struct Applying {
    bool operator==(const Applying&) const = default;
};
/// With new texts of these laws.
struct Updated {
    std::vector<std::string> laws;
    bool operator==(const Updated&) const = default;
};
/// Nothing new, after a check that the user asked for.
struct UpToDate {
    bool operator==(const UpToDate&) const = default;
};
/// In German, for the user.
struct Failed {
    std::string message;
    bool operator==(const Failed&) const = default;
};

} // namespace LegalUpdateStage

/// Keeps the law texts current: asks the federal law portal for the age of each law, fetches the archives of
/// those that have changed, and puts them into the user's own pair of files and into the corpus in memory.
/// Nothing else talks to the portal, and nothing but the requests for archives is sent.
///
/// A law that can't be had stays as it is and is tried again at the next check. The date of the last check
/// moves only if every law was answered: asked for its age, the portal named one, and where there is a new
/// version, its archive came. So a check that reached nobody, or not everybody, is due again at the next
/// start. Main thread; what takes long is done in the background. One update at a time.
class LegalUpdateService {
public:
    using Stage =
        std::variant<LegalUpdateStage::Idle, LegalUpdateStage::Checking, LegalUpdateStage::Downloading,
                     LegalUpdateStage::Applying, LegalUpdateStage::Updated, LegalUpdateStage::UpToDate,
                     LegalUpdateStage::Failed>;

    static constexpr Duration checkInterval = std::chrono::days(30);

    /// All are held by reference.
    LegalUpdateService(AppSettings& settings, const LegalCorpusStore& store, LegalCorpus& corpus,
                       HttpClient& client, Runtime runtime);

    /// Checks by itself, unless the user has switched that off, or the last check was less than
    /// `checkInterval` ago. While a law has never been loaded at all, that doesn't count.
    void checkIfDue();
    /// Checks because the user asks for it.
    void checkNow();

    Published<Stage> stage;
    /// The rows of the manifest, for display.
    Published<std::vector<LegalManifestEntry>> laws;
    bool isRunning() const { return isRunning_; }

private:
    enum class Initiator : std::uint8_t { timer, user };
    /// What a check has found.
    struct Answers {
        /// The rows that the portal has a new version of.
        std::vector<LegalManifestEntry> changed;
        /// Laws of which nothing could be learned, or whose archive didn't come.
        std::size_t missing = 0;
    };

    bool isDue() const;
    void start(Initiator initiator);
    Task<> run(Initiator initiator);
    /// The stage at the end.
    Task<Stage> update(Initiator initiator);
    Task<Answers> ask(const LegalManifest& manifest);
    /// The end of a check without new versions.
    Stage nothingNew(Initiator initiator, std::size_t missing, std::size_t total);
    void recordIfComplete(std::size_t missing);
    /// Fetches what has changed into the pair; gives the abbreviations of those that worked.
    Task<std::vector<std::string>> download(Answers& answers, LegalPair& pair);
    Task<std::expected<HttpResponse, HttpError>> fetch(const LegalManifestEntry& entry);
    Task<std::expected<LawEdition, std::string>> edition(LegalManifestEntry entry, HttpResponse response);
    /// What the portal says of a law's age; an error where it says nothing.
    Task<std::expected<std::string, HttpError>> lastModified(const LegalManifestEntry& entry);

    AppSettings& settings_;
    const LegalCorpusStore& store_;
    LegalCorpus& corpus_;
    HttpClient& client_;
    Runtime runtime_;
    bool isRunning_ = false;
    TaskGroup tasks_; // Last: what still runs uses all of the above.
};

} // namespace querlin
