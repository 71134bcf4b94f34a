#pragma once

#include "desktop/Clipboard.h"
#include "platform/x11/SelectionOffer.h"
#include "platform/x11/XcbAtoms.h"

#include <memory>
#include <vector>

namespace querlin {

/// What we hand out while we own the clipboard, and afterwards to those who have begun to read before.
struct SelectionContents {
    struct Form {
        xcb_atom_t target;
        xcb_atom_t type;
        std::uint8_t format;
        bool isText;
        std::size_t index; ///< in the item
    };

    ClipboardSnapshot::Item item;
    ClipboardHistory history = ClipboardHistory::keep;
    std::shared_ptr<SelectionOffer> offer; ///< never null
    std::vector<Form> forms;
    xcb_timestamp_t since = XCB_CURRENT_TIME;

    const std::string& bytes(const Form& form) const { return item[form.index].bytes; }
};

using SharedContents = std::shared_ptr<const SelectionContents>;

} // namespace querlin
