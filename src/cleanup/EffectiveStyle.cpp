#include "cleanup/EffectiveStyle.h"

#include <algorithm>

namespace querlin {

EffectiveStyle EffectiveStyle::resolve(const DictationContext& context, std::span<const AppProfile> profiles,
                                       WritingStyle fallbackStyle, bool fallbackPolish) {
    if (wantsRawText(context.field)) {
        return {WritingStyle::neutral, false, std::string(displayName(context.field)) + " – roh und schnell",
                true};
    }
    if (context.applicationId) {
        const auto found = std::ranges::find_if(
            profiles, [&](const AppProfile& profile) { return profile.isFor(*context.applicationId); });
        if (found != profiles.end())
            return {found->style, found->polishEnabled, "Profil " + found->appName, false};
    }
    return {fallbackStyle, fallbackPolish, "allgemeine Einstellung", false};
}

} // namespace querlin
