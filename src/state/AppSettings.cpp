#include "state/AppSettings.h"

#include "foundation/Collation.h"
#include "foundation/TextCase.h"
#include "foundation/Trimming.h"
#include "state/SuiteHintSchedule.h"

#include <algorithm>

namespace querlin {

void AppSettings::addUserTerm(std::string_view term) {
    const auto trimmed = trimWhitespaceAndNewlines(term);
    if (trimmed.empty()) return;
    auto terms = userDictionary.get();
    if (std::ranges::any_of(terms, [&](const auto& known) { return equalIgnoringCase(known, trimmed); }))
        return;
    terms.emplace_back(trimmed);
    std::ranges::stable_sort(
        terms, [](const auto& a, const auto& b) { return compareIgnoringCaseLocalized(a, b) < 0; });
    userDictionary.set(terms);
}

void AppSettings::removeUserTerm(std::string_view term) {
    auto terms = userDictionary.get();
    std::erase_if(terms, [&](const auto& known) { return canonicallyEqual(known, term); });
    userDictionary.set(terms);
}

void AppSettings::recordLaunch(Date now) {
    if (!installedAt.get()) installedAt.set(now);
}

bool AppSettings::suiteHintIsDue(Date now) const {
    return SuiteHintSchedule::isDue(now, installedAt.get(), suiteHintLastShown.get(),
                                    suiteHintDismissals.get(), suiteLinkOpened.get());
}

void AppSettings::recordSuiteLinkOpened() {
    suiteLinkOpened.set(true);
    suiteHintDismissals.set(0);
}

bool AppSettings::formerFeedbackSounds() const {
    return store_.get<bool>("playFeedbackSounds").value_or(true);
}

WritingStyle AppSettings::formerStyle() const {
    return writingStyleFromLegacyFormality(store_.get<std::string>("formality"));
}

} // namespace querlin
