#include "state/PreferencesStore.h"

#include "state/DiagnosticsLog.h"

#include <fmt/format.h>

namespace querlin {

namespace {

FileResult<> write(const std::filesystem::path& file, const PreferenceDomain& domain) {
    if (auto folder = Files::makeFolder(file.parent_path()); !folder) return folder;
    return Files::writeAtomically(file, domain.text());
}

} // namespace

PreferencesStore::PreferencesStore(std::filesystem::path file, Runtime runtime) :
    file_(std::move(file)),
    writer_(runtime, {.delay = delay, .subject = "Einstellungen", .logCategory = "app", .prepare = [this] {
                          return [file = file_, domain = domain_] { return write(file, domain); };
                      }}) {
    auto read = PreferenceDomain::read(file_);
    if (read) {
        domain_ = std::move(*read);
        return;
    }
    if (read.error() == DomainFault::NotThere) return;
    if (const auto place = Files::setAside(file_, runtime.clock.now())) {
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
    return readingTrouble_ ? readingTrouble_ : writingTrouble().get();
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
    if (mayWrite_) writer_.changed();
}

} // namespace querlin
