#include "desktop/ContextDetector.h"

#include "state/DiagnosticsLog.h"

#include <fmt/format.h>

namespace querlin {

namespace {

using FieldKind = DictationContext::FieldKind;

/// Password and search fields are that whatever their role.
FieldKind classify(const FieldRecord& field) {
    if (field.isPassword) return FieldKind::secure;
    if (field.isSearch) return FieldKind::search;
    switch (field.role) {
    case FieldRole::textArea:
    case FieldRole::terminal:
        return FieldKind::multiLine;
    case FieldRole::textField:
    case FieldRole::comboBox:
        return FieldKind::singleLine;
    case FieldRole::other:
        break;
    }
    return FieldKind::unknown;
}

} // namespace

DictationContext ContextDetector::capture() {
    DictationContext context;
    if (auto front = workspace_.frontmostApplication()) {
        if (front->localizedName) context.appName = std::move(*front->localizedName);
        context.applicationId = std::move(front->applicationId);
    }
    if (!permissions_.isAccessibilityTrusted()) {
        DiagnosticsLog::trace("context", "Eingabefelder nicht zugänglich – nur App-Name");
        return context;
    }
    context.field = kindOfFocusedField();
    DiagnosticsLog::trace("context", context.summary());
    return context;
}

FieldKind ContextDetector::kindOfFocusedField() {
    const auto field = accessibility_.focusedField();
    const auto record = field ? (*field)->look(FieldLook::kind) : std::unexpected(field.error());
    if (record) return classify(*record);
    DiagnosticsLog::trace("context",
                          fmt::format("Feld mit der Eingabemarke: {}", description(record.error())));
    return FieldKind::unknown;
}

} // namespace querlin
