#include "support/FakeDesktop.h"

namespace querlin {

// The hold key

Registration FakeHoldKey::listen(const HotkeyConfig& newlyWanted, Handler handler) {
    if (!canListen) return {};
    wanted = newlyWanted;
    handler_ = std::move(handler);
    return Registration([this] { handler_ = nullptr; });
}

void FakeHoldKey::send(HoldKeyEvent::Kind kind) {
    if (const auto handler = handler_) handler({kind, clock_.instant()});
}

// Fields

std::expected<FieldRecord, FieldFault> FakeField::look(FieldLook depth) {
    ++looks;
    if (fault) return std::unexpected(*fault);
    auto seen = record;
    if (depth == FieldLook::kind) seen.text = std::unexpected(FieldFault::notAsked);
    return seen;
}

std::expected<std::string, FieldFault> FakeField::text(TextRange) { return rangeText; }

std::expected<FieldPointer, FieldFault> FakeDesktop::focusedField() {
    if (!isFieldKnown) return std::unexpected(FieldFault::noField);
    return field;
}

void FakeDesktop::focus(DictationContext::FieldKind kind) {
    using enum DictationContext::FieldKind;
    field = std::make_shared<FakeField>();
    if (kind != unknown) field->record.role = kind == multiLine ? FieldRole::textArea : FieldRole::textField;
    field->record.isPassword = kind == secure;
    field->record.isSearch = kind == search;
    if (kind == secure) {
        field->record.text = std::unexpected(FieldFault::password);
    } else {
        setText("");
    }
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
