#pragma once

#include "desktop/Accessibility.h"
#include "desktop/Correction.h"
#include "desktop/Permissions.h"
#include "foundation/RepeatingTimer.h"
#include "foundation/Runtime.h"

#include <functional>
#include <optional>
#include <set>
#include <string>
#include <string_view>

namespace querlin {

/// A word that the user has corrected in the target field, proposed for the dictionary.
struct CorrectionSuggestion {
    /// A new UUID.
    std::string id;
    std::string recognized;
    std::string corrected;
    std::string appName;

    bool operator==(const CorrectionSuggestion&) const = default;
};

/// Looks at a field for a while after an insertion, and proposes a word that the user corrects there. A
/// change counts once it has been seen at two looks in a row. What it reads never gets into the log. Main
/// thread.
class CorrectionWatcher {
public:
    static constexpr Duration window = std::chrono::seconds(25);
    static constexpr Duration interval = std::chrono::milliseconds(1500);

    CorrectionWatcher(Runtime runtime, PermissionsManager& permissions, Accessibility& accessibility) :
        runtime_(runtime), permissions_(permissions), accessibility_(accessibility) {}
    CorrectionWatcher(const CorrectionWatcher&) = delete;
    CorrectionWatcher& operator=(const CorrectionWatcher&) = delete;

    void setOnSuggestion(std::function<void(CorrectionSuggestion)> onSuggestion) {
        onSuggestion_ = std::move(onSuggestion);
    }
    /// Begins to watch the field with the focus; a watch that runs ends.
    void watch(std::string_view insertedText, std::string_view appName);
    void stop();

    /// The text of a field of at most 4000 characters; nothing of a larger one.
    static std::optional<std::string> textOf(Field& field, const FieldRecord& record);
    /// The second way to a field's text, by its length, which must be from 1 to 20000.
    static std::optional<std::string> textByRange(Field& field, const FieldRecord& record);

private:
    void tick();
    void look(const std::string& text);
    void propose(const Correction& correction, const std::string& key);
    std::optional<std::string> objection(const Correction& correction) const;

    Runtime runtime_;
    PermissionsManager& permissions_;
    Accessibility& accessibility_;
    std::function<void(CorrectionSuggestion)> onSuggestion_;

    std::optional<RepeatingTimer> timer_;
    Instant deadline_;
    FieldPointer field_;
    std::string insertedText_;
    std::string baseline_;
    std::string appName_;
    /// "Meier→Mayer": what has been proposed in this watch.
    std::set<std::string> alreadyReported_;
    std::optional<Correction> pending_;
};

} // namespace querlin
