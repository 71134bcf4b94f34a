#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace querlin {

/// A word that the user has put right in the target field, proposed for the dictionary.
struct CorrectionSuggestion {
    /// A new UUID.
    std::string id;
    std::string recognized;
    std::string corrected;
    std::string appName;

    bool operator==(const CorrectionSuggestion&) const = default;
};

/// Looks at a field for a while after an insertion. Main thread only.
class CorrectionWatcher {
public:
    virtual ~CorrectionWatcher() = default;
    virtual void setOnSuggestion(std::function<void(CorrectionSuggestion)> onSuggestion) = 0;
    /// Begins a watch; one that runs ends.
    virtual void watch(std::string_view insertedText, std::string_view appName) = 0;
    virtual void stop() = 0;
};

} // namespace querlin
