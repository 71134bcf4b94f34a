#pragma once

#include "desktop/Accessibility.h"
#include "desktop/Clipboard.h"
#include "desktop/PasteKey.h"
#include "desktop/Permissions.h"
#include "desktop/TextInserter.h"
#include "desktop/Workspace.h"
#include "foundation/Runtime.h"

namespace querlin {

/// What an insertion works with; all outlive it.
struct ClipboardInserterParts {
    Runtime runtime;
    PermissionsManager& permissions;
    Accessibility& accessibility;
    Workspace& workspace;
    Clipboard& clipboard;
    PasteKey& pasteKey;
};

/// Inserts by way of the clipboard: saves what the user has there, puts the text there, presses the shortcut
/// for pasting, looks whether the field has changed, and gives the user's clipboard back.
///
/// What the user has copied is given up in three cases only: the shortcut could not be pressed, the field is
/// as it was before, or there is no telling and nobody has taken the text after the shortcut. Then the text
/// stays on the clipboard, to be pasted by hand. Who reads before the shortcut, as clipboard managers do,
/// proves nothing. What the user copies while the text is on the clipboard is respected.
class ClipboardInserter final : public TextInserter {
public:
    explicit ClipboardInserter(ClipboardInserterParts parts) : parts_(parts) {}

    Task<std::expected<Outcome, InsertError>> insert(std::string text) override;
    void placeOnClipboard(std::string_view text) override;

private:
    /// The field at the cursor, and its text before the paste.
    struct Target {
        FieldPointer field;
        std::optional<std::string> text;
        PasteShortcut shortcut = PasteShortcut::standard;
    };

    Target look();
    static Outcome leftOnClipboard(std::string_view reason);
    static Outcome compare(const Target& target);
    Task<> letReadersFinish(const ClipboardOffer& offer, std::uint64_t readsBefore, Instant key);

    ClipboardInserterParts parts_;
};

} // namespace querlin
