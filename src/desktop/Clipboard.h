#pragma once

#include "foundation/Task.h"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace querlin {

/// One form in which something on the clipboard can be had.
struct ClipboardData {
    /// "text/plain;charset=utf-8", "image/png", or an application's own.
    std::string type;
    std::string bytes;
    /// How the bytes are handed out again; the desktop's own affair, kept as it is.
    std::string form;

    bool operator==(const ClipboardData&) const = default;
};

/// What is on the clipboard, exactly: item by item, in all forms, in their order.
struct ClipboardSnapshot {
    using Item = std::vector<ClipboardData>;

    std::vector<Item> items;

    bool isEmpty() const { return items.empty(); }
    bool operator==(const ClipboardSnapshot&) const = default;
};

/// Whether programs that keep a history of the clipboard may keep a text.
enum class ClipboardHistory : std::uint8_t { keep, skip };

/// What we have put on the clipboard, and what has become of it. Main thread.
class ClipboardOffer {
public:
    virtual ~ClipboardOffer() = default;
    /// False as soon as somebody else has put something there.
    virtual bool isCurrent() const = 0;
    /// How often the text has been taken.
    virtual std::uint64_t completedReads() const = 0;
    /// Whether somebody has begun to look, and hasn't got the text yet.
    virtual bool isBeingRead() const = 0;
};

/// The desktop's clipboard. Main thread.
class Clipboard {
public:
    virtual ~Clipboard() = default;
    /// All that is there. A form that its owner doesn't hand out in good time is missing; items without any
    /// form are left out.
    virtual Task<ClipboardSnapshot> capture() = 0;
    /// In place of all that was there; done when it returns. An empty snapshot empties the clipboard.
    virtual void write(ClipboardSnapshot contents) = 0;
    /// A plain text in place of all that was there; done when it returns. Never null.
    virtual std::shared_ptr<ClipboardOffer> writeText(std::string_view text, ClipboardHistory history) = 0;
};

} // namespace querlin
