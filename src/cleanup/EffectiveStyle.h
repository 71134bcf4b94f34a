#pragma once

#include "desktop/DictationContext.h"
#include "state/AppProfile.h"
#include "state/WritingStyle.h"

#include <span>
#include <string>

namespace querlin {

/// The style that one dictation ends up with. Worked out when it begins.
struct EffectiveStyle {
    WritingStyle style = WritingStyle::aktenstil;
    /// Whether the language model may polish the text.
    bool polishEnabled = true;
    /// Why, in words for the user and the log.
    std::string reason = "–";
    /// Raw and on one line, for search fields.
    bool compactText = false;

    /// A search field beats every profile; then the first profile of the application counts; then the
    /// general setting.
    static EffectiveStyle resolve(const DictationContext& context, std::span<const AppProfile> profiles,
                                  WritingStyle fallbackStyle, bool fallbackPolish);

    bool operator==(const EffectiveStyle&) const = default;
};

} // namespace querlin
