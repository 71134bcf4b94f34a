#include "desktop/HotkeyManager.h"

#include "desktop/HotkeyKeys.h"
#include "state/DiagnosticsLog.h"

#include <fmt/format.h>

namespace querlin {

namespace {

constexpr std::uint32_t eventMask = KeyEventType::maskBit(KeyEventType::keyDown) |
                                    KeyEventType::maskBit(KeyEventType::keyUp) |
                                    KeyEventType::maskBit(KeyEventType::flagsChanged);

template<class... Arguments>
void note(fmt::format_string<Arguments...> format, Arguments&&... arguments) {
    DiagnosticsLog::note("hotkey", fmt::format(format, std::forward<Arguments>(arguments)...));
}

template<class... Arguments>
void trace(fmt::format_string<Arguments...> format, Arguments&&... arguments) {
    // Every key of the user's comes by here.
    if (!DiagnosticsLog::verbose) return;
    DiagnosticsLog::trace("tap", fmt::format(format, std::forward<Arguments>(arguments)...));
}

} // namespace

HotkeyManager::HotkeyManager(MainQueue& queue, KeyboardEvents& keyboard, PermissionsManager& permissions,
                             const HotkeyConfig& config, std::string bundlePath) :
    queue_(queue),
    keyboard_(keyboard),
    permissions_(permissions),
    config_(config),
    bundlePath_(std::move(bundlePath)) {}

void HotkeyManager::setCallbacks(std::function<void()> onPress, std::function<void()> onRelease) {
    onPress_ = std::move(onPress);
    onRelease_ = std::move(onRelease);
}

bool HotkeyManager::start() {
    stop();
    const bool isTrusted = permissions_.isAccessibilityTrusted();
    note("start() – AXIsProcessTrusted={}, Hotkey={}", isTrusted, config_.displayName());
    if (!isTrusted) {
        note("Abbruch: keine Bedienungshilfen-Berechtigung.");
        return false;
    }
    if (permissions_.isSecureInputEnabled()) {
        const auto owner = permissions_.secureInputOwner();
        note("WARNUNG: Secure Input ist aktiv{} – Event-Taps bekommen keine Tastenereignisse.",
             owner ? fmt::format(" (durch {})", owner->name) : "");
    }
    eventTap_ = keyboard_.createTap(eventMask, [this](const KeyEvent& event) { handle(event); });
    if (!eventTap_) {
        note("CGEvent.tapCreate lieferte nil – Tap nicht angelegt.");
        return false;
    }
    eventTap_->enable(true);
    isRunning_ = true;
    observedEventCount_ = 0;
    note("Tap aktiv={}, Maske=0x{:x}", eventTap_->isEnabled(), eventMask);
    startGlobalMonitor();
    return true;
}

void HotkeyManager::startGlobalMonitor() {
    globalMonitor_ = keyboard_.addMonitor([this](const KeyEvent& event) {
        ++monitorEventCount_;
        DiagnosticsLog::trace("monitor", fmt::format("flagsChanged keyCode={} modifierFlags=0x{:x}",
                                                     event.keyCode, event.flags));
    });
    note("NSEvent-Gegenprobe {}", globalMonitor_ ? "aktiv" : "NICHT aktiv");
}

void HotkeyManager::stop() {
    eventTap_.reset();
    isRunning_ = false;
    isHotkeyDown_ = false;
    globalMonitor_.reset();
}

void HotkeyManager::update(const HotkeyConfig& config) {
    if (config == config_) return;
    note("Hotkey geändert: {} → {}", config_.displayName(), config.displayName());
    config_ = config;
    if (!std::exchange(isHotkeyDown_, false)) return;
    lifetime_.onMain(queue_, [this] {
        if (onRelease_) onRelease_();
    })();
}

// The stream

void HotkeyManager::handle(const KeyEvent& event) {
    if (event.type == KeyEventType::disabledByTimeout || event.type == KeyEventType::disabledByUserInput) {
        note("Tap wurde deaktiviert ({}) – reaktiviere.", event.type);
        if (eventTap_) eventTap_->enable(true);
        return;
    }
    ++observedEventCount_;
    switch (config_.mode) {
    case HotkeyConfig::Mode::holdModifier:
        handleModifier(event);
        return;
    case HotkeyConfig::Mode::holdCombo:
        handleCombo(event);
        return;
    }
}

/// Press and release are both changes of the key's own flag; the flag is read only from events of this key.
void HotkeyManager::handleModifier(const KeyEvent& event) {
    if (event.type != KeyEventType::flagsChanged) return;
    const auto wanted = codesOf(config_.modifier);
    const bool isHit = event.keyCode == wanted.keyCode;
    const bool isHeld = (event.flags & wanted.flagMask) != 0;
    const auto* const result = isHeld ? "TREFFER down" : "TREFFER up";
    trace("flagsChanged keyCode={} flags=0x{:x} erwarte keyCode={} maske=0x{:x} → {}", event.keyCode,
          event.flags, wanted.keyCode, wanted.flagMask, isHit ? result : "ignoriert");
    if (isHit) setDown(isHeld);
}

/// Letting go of the modifiers first doesn't end a hold; the main key does.
void HotkeyManager::handleCombo(const KeyEvent& event) {
    const bool isDown = event.type == KeyEventType::keyDown;
    if (!isDown && event.type != KeyEventType::keyUp) return;
    const auto wanted = codesOf(config_.combo);
    if (event.keyCode != wanted.keyCode) return;
    trace("{} keyCode={} flags=0x{:x}", isDown ? "keyDown" : "keyUp", event.keyCode, event.flags);
    if (isDown && (wanted.requiredFlags & ~event.flags) != 0) {
        trace("Modifier passen nicht – ignoriert.");
        return;
    }
    setDown(isDown);
}

void HotkeyManager::setDown(bool down) {
    if (down == isHotkeyDown_) return; // A held key repeats itself.
    isHotkeyDown_ = down;
    note("Hotkey {}", down ? "GEDRÜCKT" : "LOSGELASSEN");
    lifetime_.onMain(queue_, [this, down] {
        const auto& call = down ? onPress_ : onRelease_;
        if (call) call();
    })();
}

std::string HotkeyManager::diagnosticsSummary() {
    const auto codes = codesOf(config_.modifier);
    auto text =
        fmt::format("Hotkey: {}\n  Modus: {}, Taste={} (keyCode {}, Maske 0x{:x})\n  "
                    "AXIsProcessTrusted: {}\n  Tap angelegt: {}, läuft: {}",
                    config_.displayName(), rawValue(config_.mode), rawValue(config_.modifier), codes.keyCode,
                    codes.flagMask, permissions_.isAccessibilityTrusted(), eventTap_ != nullptr, isRunning_);
    if (eventTap_) text += fmt::format("\n  Tap aktiviert: {}", eventTap_->isEnabled());
    text += fmt::format("\n  Vom Tap gesehene Ereignisse: {}\n  Vom NSEvent-Monitor gesehene Ereignisse: {}",
                        observedEventCount_, monitorEventCount_);
    text += fmt::format("\n  Secure Input: {}", permissions_.isSecureInputEnabled());
    if (const auto owner = permissions_.secureInputOwner())
        text += fmt::format(" (durch {}, PID {})", owner->name, owner->processIdentifier);
    return text + "\n  Bundle: " + bundlePath_;
}

} // namespace querlin
