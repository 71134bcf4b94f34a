#include "desktop/HotkeyManager.h"

#include "state/DiagnosticsLog.h"

#include <fmt/format.h>

namespace querlin {

namespace {

template<class... Arguments>
void note(fmt::format_string<Arguments...> format, Arguments&&... arguments) {
    DiagnosticsLog::note("hotkey", fmt::format(format, std::forward<Arguments>(arguments)...));
}

} // namespace

HotkeyManager::HotkeyManager(MainQueue& queue, HoldKey& holdKey, PermissionsManager& permissions,
                             const HotkeyConfig& config, std::string programPath) :
    queue_(queue),
    holdKey_(holdKey),
    permissions_(permissions),
    config_(config),
    programPath_(std::move(programPath)) {}

void HotkeyManager::setCallbacks(std::function<void()> onPress, std::function<void()> onRelease,
                                 std::function<void()> onAbandon) {
    onPress_ = std::move(onPress);
    onRelease_ = std::move(onRelease);
    onAbandon_ = std::move(onAbandon);
}

bool HotkeyManager::start() {
    stop();
    const bool isTrusted = permissions_.isAccessibilityTrusted();
    note("start() – Tasten und Eingabefelder zugänglich={}, Hotkey={}", isTrusted, config_.displayName());
    if (!isTrusted) {
        note("Abbruch: Tastatur oder Eingabefelder sind nicht zugänglich.");
        return false;
    }
    listen();
    if (!listening_) note("Auf diesem Desktop lässt sich keine Diktattaste hören.");
    return isRunning();
}

void HotkeyManager::listen() {
    listening_ = holdKey_.listen(config_, [this](const HoldKeyEvent& event) { handle(event); });
}

void HotkeyManager::stop() {
    listening_.reset();
    isDown_ = false;
}

void HotkeyManager::update(const HotkeyConfig& config) {
    if (config == config_) return;
    note("Hotkey geändert: {} → {}", config_.displayName(), config.displayName());
    config_ = config;
    end();
    if (!isRunning()) return;
    listening_.reset(); // Only one key at a time is listened to.
    listen();
}

void HotkeyManager::handle(const HoldKeyEvent& event) {
    switch (event.kind) {
    case HoldKeyEvent::Kind::ready:
        note("Die Diktattaste wird gehört: {}", holdKey_.boundKey());
        return;
    case HoldKeyEvent::Kind::pressed:
        press(event.at);
        return;
    case HoldKeyEvent::Kind::released:
        end();
        return;
    case HoldKeyEvent::Kind::otherKeyPressed:
        abandonIfShortcut(event.at);
        return;
    case HoldKeyEvent::Kind::lost:
        note("Die Diktattaste wird nicht mehr gehört.");
        end();
        return;
    }
}

void HotkeyManager::press(Instant at) {
    if (std::exchange(isDown_, true)) return;
    isAbandoned_ = false;
    pressedAt_ = at;
    ++presses_;
    post(&HotkeyManager::onPress_);
}

void HotkeyManager::end() {
    if (std::exchange(isDown_, false) && !isAbandoned_) post(&HotkeyManager::onRelease_);
}

/// Whoever presses a key later than that wants it typed while dictating. Combinations already are shortcuts.
void HotkeyManager::abandonIfShortcut(Instant at) {
    const bool isModifierHeld = isDown_ && !isAbandoned_ && config_.mode == HotkeyConfig::Mode::holdModifier;
    if (!isModifierHeld || at - pressedAt_ > shortcutSpan) return;
    isAbandoned_ = true;
    ++abandonments_;
    post(&HotkeyManager::onAbandon_);
}

/// The callback is read when its turn comes.
void HotkeyManager::post(std::function<void()> HotkeyManager::* callback) {
    lifetime_.onMain(queue_, [this, callback] {
        if (const auto call = this->*callback) call();
    })();
}

std::string HotkeyManager::diagnosticsSummary() {
    return fmt::format("Hotkey: {}\n  Modus: {}, Taste={}\n  Tasten und Eingabefelder zugänglich: {}\n  "
                       "Taste wird gehört: {}, gebunden: {}, andere Tasten bekannt: {}\n  "
                       "Gedrückt: {}, davon als Tastenkürzel verworfen: {}\n  Programm: {}",
                       config_.displayName(), rawValue(config_.mode), rawValue(config_.modifier),
                       permissions_.isAccessibilityTrusted(), isRunning() && holdKey_.isReady(),
                       holdKey_.boundKey(), holdKey_.tellsOtherKeys(), presses_, abandonments_, programPath_);
}

} // namespace querlin
