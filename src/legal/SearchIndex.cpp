#include "legal/SearchIndex.h"

#include "foundation/TextCase.h"

namespace querlin {

namespace {

std::size_t sectionCount(std::span<const LegalLaw> laws) {
    std::size_t count = 0;
    for (const auto& law : laws) count += law.sections.size();
    return count;
}

std::size_t bytesOf(std::span<const LegalLaw> laws, SharedText LegalSection::* member) {
    std::size_t bytes = 0;
    for (const auto& law : laws) {
        for (const auto& section : law.sections) bytes += (section.*member).view().size() + 1;
    }
    return bytes;
}

} // namespace

SearchIndex::SearchIndex(std::span<const LegalLaw> laws) :
    laws_(laws),
    titles_(sectionCount(laws), bytesOf(laws, &LegalSection::title)),
    texts_(sectionCount(laws), bytesOf(laws, &LegalSection::text)) {
    entries_.reserve(sectionCount(laws));
    for (const auto& law : laws) {
        lawStarts_.push_back(entries_.size());
        for (const auto& section : law.sections) {
            entries_.push_back({&law, &section});
            titles_.append(section.title);
            texts_.append(section.text);
        }
    }
    lawStarts_.push_back(entries_.size());
}

void SearchIndex::matches(std::string_view term, Part part, const LegalLaw* law, const Visitor& visit) const {
    TextBlob::Range range{0, entries_.size()};
    if (law) {
        const auto number = static_cast<std::size_t>(law - laws_.data());
        range = {lawStarts_[number], lawStarts_[number + 1]};
    }
    const auto& blob = part == Part::titles ? titles_ : texts_;
    blob.search(lowercase(term), range, [&](std::size_t number) { return visit(entries_[number]); });
}

} // namespace querlin
