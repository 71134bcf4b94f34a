#include "state/PreferencesStore.h"

#include "foundation/Files.h"
#include "state/DiagnosticsLog.h"

#include <fmt/format.h>

namespace querlin {

PreferencesStore::PreferencesStore(std::filesystem::path file, const Clock& clock) : file_(std::move(file)) {
    auto read = PreferenceDomain::read(file_);
    if (read) {
        domain_ = std::move(*read);
        return;
    }
    if (read.error() == DomainFault::NotThere) return;
    if (const auto place = Files::setAside(file_, clock.now())) {
        readingTrouble_ =
            fmt::format("Einstellungen nicht lesbar – beiseitegelegt als {}.", place->filename().string());
    } else {
        mayWrite_ = false;
        readingTrouble_ = fmt::format("Einstellungen nicht lesbar, Änderungen gelten nur bis zum Ende: {}",
                                      place.error().description());
    }
    DiagnosticsLog::note("app", *readingTrouble_);
}

std::optional<std::string> PreferencesStore::trouble() const {
    return readingTrouble_ ? readingTrouble_ : writingTrouble_;
}

void PreferencesStore::set(std::string_view key, PreferenceValue value) {
    domain_.set(key, std::move(value));
    changed();
}

void PreferencesStore::remove(std::string_view key) {
    domain_.remove(key);
    changed();
}

void PreferencesStore::copyFrom(const PreferenceDomain& other, std::string_view key) {
    domain_.copyFrom(other, key);
    changed();
}

void PreferencesStore::changed() {
    unsaved_ = true;
    if (openBatches_ == 0) save();
}

void PreferencesStore::save() {
    if (!mayWrite_) return;
    auto result = Files::makeFolder(file_.parent_path());
    if (result) result = Files::writeAtomically(file_, domain_.text());
    if (result) {
        unsaved_ = false;
        writingTrouble_.reset();
    } else if (!writingTrouble_) {
        writingTrouble_ = "Einstellungen nicht gespeichert: " + result.error().description();
        DiagnosticsLog::note("app", *writingTrouble_);
    }
}

} // namespace querlin
