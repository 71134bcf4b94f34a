#include "ui/lookup/LawSearch.h"

#include "foundation/Waiting.h"

#include <algorithm>

#include <fmt/format.h>

namespace querlin {

void LawSearch::setQuery(std::string query) {
    query_.set(std::move(query));
    searching_.set(true);
    pause_ = runtime_.mainQueue.after(typingPause, [this] { searchNow(); });
}

void LawSearch::searchNow() {
    pause_.reset();
    tasks_.start(runSearch());
}

void LawSearch::textsChanged() {
    if (!query_.get().empty()) searchNow();
}

void LawSearch::clear() {
    pause_.reset();
    query_.set({});
    searching_.set(false);
    hits_.set({});
    selection_.set(std::nullopt);
}

Task<> LawSearch::runSearch() {
    const auto asked = query_.get();
    const auto number = ++lastSearch_;
    searching_.set(true);
    co_await corpus_.ready();
    auto search = [&corpus = corpus_, asked] { return corpus.search(asked); };
    auto found = co_await background(corpus_.runtime(), std::move(search));
    // Of two searches for the same query the later one has seen the newer texts.
    if (query_.get() == asked && number == lastSearch_) take(std::move(found));
}

void LawSearch::take(std::vector<LegalHit> found) {
    searching_.set(false);
    const auto& chosen = selection_.get();
    const auto isChosen = [&chosen](const LegalHit& hit) { return chosen && hit.id() == chosen->id(); };
    const auto kept = std::ranges::find_if(found, isChosen);
    std::optional<LegalHit> next;
    if (kept != found.end()) {
        next = *kept; // With its current text.
    } else if (!found.empty()) {
        next = found.front();
    }
    hits_.set(std::move(found));
    selection_.set(std::move(next));
}

/// A second copy doesn't restart the time.
void LawSearch::markCopied() {
    if (copied_.get()) return;
    copied_.set(true);
    copiedReset_ = runtime_.mainQueue.after(copiedTime, [this] { copied_.set(false); });
}

std::string_view LawSearch::hint() const {
    if (query_.get().empty()) return "BGB und FamFG durchsuchen";
    return searching_.get() ? "Suche…" : "Kein Treffer";
}

std::string LawSearch::fullText(const LegalHit& hit) {
    const auto& section = hit.section;
    auto text = section.citation(hit.law);
    const std::string_view title = section.title;
    if (!title.empty()) text += fmt::format(" – {}", title);
    return text + fmt::format("\n{}", std::string_view(section.text));
}

} // namespace querlin
