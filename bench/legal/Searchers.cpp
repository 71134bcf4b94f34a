#include "Searchers.h"

#include <algorithm>

namespace querlin::bench {

Searchers::Searchers(const Corpus& corpus, PlainCorpus plain) :
    index_(plain.texts.bytes.size()), texts_(plain.texts.bytes.size()), plain_(std::move(plain)) {
    for (const auto& law : corpus.laws) {
        for (const auto& section : law.sections) {
            sections_.push_back(&section);
            texts_.append(section.text);
            index_.addTexts({section.title, section.text});
        }
        index_.addLaw(law.sections);
    }
    found_.reserve(sections_.size());
    numbers_.reserve(sections_.size());
}

const std::vector<const LegalSection*>& Searchers::ours(std::string_view term) {
    found_.clear();
    index_.matches(term, SearchIndex::Part::texts, index_.allLaws(), [this](const SearchIndex::Entry& entry) {
        found_.push_back(entry.section);
        return true;
    });
    return found_;
}

const Searchers::Found& Searchers::plainly(std::string_view term) {
    numbers_.clear();
    plain_.texts.search(term, [this](std::size_t number) {
        numbers_.push_back(number);
        return true;
    });
    return numbers_;
}

const Searchers::Found& Searchers::scanned(std::string_view term, Registers registers) {
    numbers_.clear();
    const auto visit = [this](std::size_t number) {
        numbers_.push_back(number);
        return true;
    };
    texts_.search(term, {0, texts_.count()}, visit, registers);
    return numbers_;
}

const Searchers::Found& Searchers::shownPlainly(std::string_view term, std::size_t limit) {
    numbers_.clear();
    const auto visit = [&](std::size_t number) {
        if (std::ranges::find(numbers_, number) == numbers_.end()) numbers_.push_back(number);
        return numbers_.size() < limit;
    };
    plain_.titles.search(term, visit);
    if (numbers_.size() < limit) plain_.texts.search(term, visit);
    return numbers_;
}

bool Searchers::agreeOn(std::string_view term) {
    const auto isWhatWeFound = [&](const Found& numbers) {
        return std::ranges::equal(numbers, found_, {},
                                  [this](std::size_t number) { return sections_[number]; });
    };
    ours(term);
    return isWhatWeFound(plainly(term)) && isWhatWeFound(scanned(term, Registers::portable)) &&
           isWhatWeFound(scanned(term, widestRegisters()));
}

} // namespace querlin::bench
