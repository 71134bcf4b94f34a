#pragma once

#include "foundation/Task.h"

#include <cstdint>
#include <expected>
#include <string>
#include <string_view>

namespace querlin {

/// Why nothing was pasted at all.
enum class InsertError : std::uint8_t { noAccessibilityPermission };

/// The German text for the user.
std::string_view description(InsertError error);

/// Puts a finished text at the cursor of whatever application has the focus.
class TextInserter {
public:
    /// What is known of the result.
    enum class Outcome : std::uint8_t {
        inserted,    ///< the field has changed, or there was nothing to paste
        unconfirmed, ///< pasted, but the field can't be compared
        notInserted  ///< the field is as it was; the text is still on the clipboard
    };

    virtual ~TextInserter() = default;
    /// Pastes and gives the user's clipboard back. Main thread, suspended while it waits.
    virtual Task<std::expected<Outcome, InsertError>> insert(std::string text) = 0;
    /// Leaves a text on the clipboard for the user, as plain text and nothing else.
    virtual void placeOnClipboard(std::string_view text) = 0;
};

} // namespace querlin
