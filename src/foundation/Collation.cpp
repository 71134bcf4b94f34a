#include "foundation/Collation.h"

#include <memory>

#include <unicode/coll.h>
#include <unicode/stringpiece.h>

namespace querlin {

namespace {

std::unique_ptr<const icu::Collator> germanCollator() {
    UErrorCode status = U_ZERO_ERROR;
    std::unique_ptr<icu::Collator> collator(icu::Collator::createInstance(icu::Locale::getGerman(), status));
    if (U_FAILURE(status)) return nullptr;
    collator->setStrength(icu::Collator::SECONDARY); // Accents count, case doesn't.
    return collator;
}

} // namespace

int compareIgnoringCaseLocalized(std::string_view a, std::string_view b) {
    static const auto collator = germanCollator(); // Safe to share: comparing is const.
    if (!collator) return a.compare(b);
    UErrorCode status = U_ZERO_ERROR;
    return collator->compareUTF8({a.data(), static_cast<std::int32_t>(a.size())},
                                 {b.data(), static_cast<std::int32_t>(b.size())}, status);
}

} // namespace querlin
