#include "desktop/ClipboardInserter.h"

#include "foundation/TextCase.h"
#include "foundation/Waiting.h"
#include "state/DiagnosticsLog.h"

#include <algorithm>
#include <array>

namespace querlin {

namespace {

constexpr Duration beforeTheKey = std::chrono::milliseconds(50);
constexpr Duration untilTheLook = std::chrono::milliseconds(250);
constexpr Duration restoreDelay = std::chrono::milliseconds(550);
/// Behind the key; a program that hasn't begun to read by then isn't waited for.
constexpr Duration longestReading = std::chrono::seconds(2);
constexpr Duration betweenLooks = std::chrono::milliseconds(10);

/// Terminals that can't be told by their elements, for they show none.
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
    const auto front = parts_.workspace.frontmostApplication();
    Target target;
    target.element =
        parts_.contextDetector.focusedElement(front ? std::optional(front->processIdentifier) : std::nullopt);
    if (target.element) {
        target.value = ContextDetector::stringValue(*target.element, AX::value);
        if (ContextDetector::stringValue(*target.element, AX::subrole) == AX::terminal)
            target.shortcut = PasteShortcut::terminal;
    } else if (isHiddenTerminal(front)) {
        target.shortcut = PasteShortcut::terminal;
    }
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
    const auto readsBefore = offer->completedReads();
    co_await parts_.pasteKey.press(target.shortcut);
    const auto key = parts_.runtime.clock.instant();
    co_await sleepFor(queue, untilTheLook);

    const auto outcome = compare(target);
    if (outcome != Outcome::notInserted) {
        co_await sleepFor(queue, restoreDelay - untilTheLook);
        co_await letReadersFinish(*offer, readsBefore, key);
    }
    // Nobody who could have pasted it has asked for it.
    const bool isUnread =
        offer->isCurrent() && offer->completedReads() == readsBefore && !offer->isBeingRead();
    if (outcome == Outcome::notInserted || (outcome == Outcome::unconfirmed && isUnread)) {
        DiagnosticsLog::note("insert", "Einfügen nicht angekommen – Text bleibt in der Zwischenablage.");
        co_return Outcome::notInserted;
    }
    if (offer->isCurrent()) {
        parts_.clipboard.write(std::move(snapshot));
    } else {
        DiagnosticsLog::note("insert", "Inzwischen wurde etwas kopiert – die Zwischenablage bleibt so.");
    }
    co_return outcome;
}

TextInserter::Outcome ClipboardInserter::compare(const Target& target) {
    if (!target.element || !target.value) return Outcome::unconfirmed;
    const auto value = ContextDetector::stringValue(*target.element, AX::value);
    if (!value) return Outcome::unconfirmed;
    return canonicallyEqual(*value, *target.value) ? Outcome::notInserted : Outcome::inserted;
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
