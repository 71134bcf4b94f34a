#include "desktop/ClipboardInserter.h"

#include "foundation/TextCase.h"
#include "foundation/Waiting.h"
#include "state/DiagnosticsLog.h"

#include <algorithm>
#include <array>

#include <fmt/format.h>

namespace querlin {

namespace {

constexpr Duration beforeTheKey = std::chrono::milliseconds(50);
constexpr Duration untilTheLook = std::chrono::milliseconds(250);
constexpr Duration restoreDelay = std::chrono::milliseconds(550);
/// After the key; a program that hasn't begun to read by then isn't waited for.
constexpr Duration longestReading = std::chrono::seconds(2);
constexpr Duration betweenLooks = std::chrono::milliseconds(10);

/// Terminals that show nothing of themselves to the accessibility bus.
constexpr std::array<std::string_view, 6> hiddenTerminals = {
    "Alacritty", "kitty", "foot", "org.wezfurlong.wezterm", "com.mitchellh.ghostty", "konsole"};

bool isHiddenTerminal(const std::optional<RunningApplication>& application) {
    return application && application->applicationId &&
           std::ranges::find(hiddenTerminals, *application->applicationId) != hiddenTerminals.end();
}

} // namespace

void ClipboardInserter::placeOnClipboard(std::string_view text) {
    parts_.clipboard.writeText(text, ClipboardHistory::keep);
}

ClipboardInserter::Target ClipboardInserter::look() {
    Target target;
    auto field = parts_.accessibility.focusedField();
    const auto record = field ? (*field)->look(FieldLook::contents) : std::unexpected(field.error());
    const bool isTerminal = record ? record->role == FieldRole::terminal
                                   : isHiddenTerminal(parts_.workspace.frontmostApplication());
    if (isTerminal) target.shortcut = PasteShortcut::terminal;
    if (record && record->text) target.text = *record->text;
    if (field) target.field = std::move(*field);
    return target;
}

Task<std::expected<TextInserter::Outcome, InsertError>> ClipboardInserter::insert(std::string text) {
    auto& queue = parts_.runtime.mainQueue;
    if (!parts_.permissions.isAccessibilityTrusted())
        co_return std::unexpected(InsertError::noAccessibilityPermission);
    if (text.empty()) co_return Outcome::inserted;

    const Target target = look();
    ClipboardSnapshot snapshot = co_await parts_.clipboard.capture();
    const auto offer = parts_.clipboard.writeText(text, ClipboardHistory::skip);
    co_await sleepFor(queue, beforeTheKey);
    co_await parts_.pasteKey.awaitFreeKeyboard();
    const auto readsBefore = offer->completedReads(); // By clipboard managers and the like.
    const bool isPressed = co_await parts_.pasteKey.press(target.shortcut);
    if (!isPressed) co_return leftOnClipboard("Die Einfügetaste ließ sich nicht drücken");
    const auto key = parts_.runtime.clock.instant();
    co_await sleepFor(queue, untilTheLook);

    const auto outcome = compare(target);
    if (outcome == Outcome::notInserted) co_return leftOnClipboard("Einfügen nicht angekommen");
    co_await sleepFor(queue, restoreDelay - untilTheLook);
    co_await letReadersFinish(*offer, readsBefore, key);
    // Nobody who could have pasted it has taken it.
    if (outcome == Outcome::unconfirmed && offer->completedReads() == readsBefore)
        co_return leftOnClipboard("Einfügen nicht angekommen");
    if (offer->isCurrent()) {
        parts_.clipboard.write(std::move(snapshot));
    } else {
        DiagnosticsLog::note("insert", "Inzwischen wurde etwas kopiert – die Zwischenablage bleibt so.");
    }
    co_return outcome;
}

TextInserter::Outcome ClipboardInserter::leftOnClipboard(std::string_view reason) {
    DiagnosticsLog::note("insert", fmt::format("{} – Text bleibt in der Zwischenablage.", reason));
    return Outcome::notInserted;
}

TextInserter::Outcome ClipboardInserter::compare(const Target& target) {
    if (!target.field || !target.text) return Outcome::unconfirmed;
    const auto now = target.field->look(FieldLook::contents);
    if (!now || !now->text) return Outcome::unconfirmed;
    return canonicallyEqual(*now->text, *target.text) ? Outcome::notInserted : Outcome::inserted;
}

/// A slow program would else be given the user's own clipboard in place of the text.
Task<> ClipboardInserter::letReadersFinish(const ClipboardOffer& offer, std::uint64_t readsBefore,
                                           Instant key) {
    const auto mustWait = [&] {
        const bool isRead = offer.completedReads() > readsBefore && !offer.isBeingRead();
        return offer.isCurrent() && !isRead && parts_.runtime.clock.instant() - key < longestReading;
    };
    while (mustWait()) co_await sleepFor(parts_.runtime.mainQueue, betweenLooks);
}

} // namespace querlin
