#include "support/FakeDesktop.h"

#include <cerrno>

namespace querlin {

// The hold key

Registration FakeHoldKey::listen(const HotkeyConfig& newlyWanted, Handler handler) {
    if (!canListen) return {};
    ++listened;
    wanted = newlyWanted;
    handler_ = std::move(handler);
    return Registration([this] { handler_ = nullptr; });
}

void FakeHoldKey::send(HoldKeyEvent::Kind kind) {
    if (const auto handler = handler_) handler({kind, clock_.instant()});
}

// Elements

std::expected<AccessibilityValue, AccessibilityError> FakeElement::attribute(std::string_view name) {
    ++reads;
    const auto found = attributes.find(name);
    if (found == attributes.end()) return std::unexpected(-ENOENT);
    return found->second;
}

std::expected<std::string, AccessibilityError> FakeElement::stringForRange(std::int64_t, std::int64_t) {
    if (!rangeText) return std::unexpected(-ENOENT);
    return *rangeText;
}

ElementPointer FakeDesktop::application(std::int32_t processIdentifier) {
    return front && front->processIdentifier == processIdentifier ? ofApplication : std::make_shared<FakeElement>();
}

void FakeDesktop::focus(DictationContext::FieldKind kind) {
    using enum DictationContext::FieldKind;
    field = std::make_shared<FakeElement>();
    if (kind != unknown) field->attributes["AXRole"] = std::string(kind == multiLine ? AX::textArea : AX::textField);
    if (kind == secure) field->attributes["AXSubrole"] = std::string(AX::secureTextField);
    if (kind == search) field->attributes["AXSubrole"] = std::string(AX::searchField);
    if (kind != secure) setText("");
    focusOn(field);
}

// Clipboard

Task<ClipboardSnapshot> FakeClipboard::capture() {
    if (captureDelay > Duration::zero()) co_await sleepFor(queue_, captureDelay);
    co_return contents;
}

void FakeClipboard::copy(ClipboardSnapshot newContents) {
    if (offer) offer->current = false;
    history.reset();
    contents = std::move(newContents);
}

void FakeClipboard::write(ClipboardSnapshot newContents) { copy(std::move(newContents)); }

std::shared_ptr<ClipboardOffer> FakeClipboard::writeText(std::string_view text, ClipboardHistory newHistory) {
    copy({{{{"text/plain", std::string(text), ""}}}});
    history = newHistory;
    offer = std::make_shared<Offer>();
    return offer;
}

std::string FakeClipboard::text() const {
    for (const auto& item : contents.items) {
        for (const auto& data : item) {
            if (data.type == "text/plain") return data.bytes;
        }
    }
    return {};
}

} // namespace querlin
