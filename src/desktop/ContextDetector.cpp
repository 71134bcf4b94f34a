#include "desktop/ContextDetector.h"

#include "state/DiagnosticsLog.h"

#include <fmt/format.h>

namespace querlin {

namespace {

using FieldKind = DictationContext::FieldKind;

ElementPointer copyFocusedElement(AccessibilityElement& root) {
    auto value = root.attribute(AX::focusedElement);
    if (!value) {
        DiagnosticsLog::trace("context", fmt::format("AXFocusedUIElement: Fehler {}", value.error()));
        return nullptr;
    }
    auto* element = std::get_if<ElementPointer>(&*value);
    return element ? std::move(*element) : nullptr;
}

/// A subrole goes before a role.
FieldKind classify(AccessibilityElement& element) {
    const auto role = ContextDetector::stringValue(element, AX::role).value_or("");
    const auto subrole = ContextDetector::stringValue(element, AX::subrole).value_or("");
    if (subrole == AX::secureTextField) return FieldKind::secure;
    if (subrole == AX::searchField) return FieldKind::search;
    if (role == AX::textArea) return FieldKind::multiLine;
    if (role == AX::textField || role == AX::comboBox) return FieldKind::singleLine;
    return FieldKind::unknown;
}

} // namespace

DictationContext ContextDetector::capture() {
    DictationContext context;
    std::optional<std::int32_t> process;
    if (auto front = workspace_.frontmostApplication()) {
        if (front->localizedName) context.appName = std::move(*front->localizedName);
        context.applicationId = std::move(front->applicationId);
        process = front->processIdentifier;
    }
    if (!permissions_.isAccessibilityTrusted()) {
        DiagnosticsLog::trace("context", "keine Bedienungshilfen – nur App-Name");
        return context;
    }
    if (const auto element = focusedElement(process)) context.field = classify(*element);
    DiagnosticsLog::trace("context", context.summary());
    return context;
}

ElementPointer ContextDetector::focusedElement(std::optional<std::int32_t> processIdentifier) {
    if (auto element = copyFocusedElement(*accessibility_.systemWide())) return element;
    if (!processIdentifier) return nullptr;
    return copyFocusedElement(*accessibility_.application(*processIdentifier));
}

std::optional<std::string> ContextDetector::stringValue(AccessibilityElement& element,
                                                        std::string_view attribute) {
    auto value = element.attribute(attribute);
    auto* text = value ? std::get_if<std::string>(&*value) : nullptr;
    return text ? std::optional(std::move(*text)) : std::nullopt;
}

} // namespace querlin
