#pragma once

#include "desktop/Accessibility.h"
#include "desktop/Clipboard.h"
#include "desktop/DictationContext.h"
#include "desktop/HoldKey.h"
#include "desktop/PasteKey.h"
#include "desktop/SystemAccess.h"
#include "desktop/Workspace.h"
#include "foundation/Clock.h"
#include "foundation/Waiting.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace querlin {

/// A hold key that tests press.
class FakeHoldKey final : public HoldKey {
public:
    explicit FakeHoldKey(const Clock& clock) : clock_(clock) {}
    Registration listen(const HotkeyConfig& newlyWanted, Handler handler) override;
    bool isReady() const override { return isHeard(); }
    bool tellsOtherKeys() const override { return seesOtherKeys; }
    std::string boundKey() const override { return wanted.displayName(); }

    void send(HoldKeyEvent::Kind kind);
    void hold(bool down) { send(down ? HoldKeyEvent::Kind::pressed : HoldKeyEvent::Kind::released); }
    bool isHeard() const { return handler_ != nullptr; }

    bool canListen = true;
    bool seesOtherKeys = true;
    HotkeyConfig wanted;

private:
    const Clock& clock_;
    Handler handler_;
};

class FakeAccess final : public SystemAccess {
public:
    AuthorizationStatus microphoneStatus() override { return microphone; }
    AuthorizationStatus speechStatus() override { return speech; }
    bool isProcessTrusted() override { return trusted; }
    void requestMicrophone(Answer answer) override { answer(microphone == AuthorizationStatus::authorized); }
    void requestSpeech(Answer answer) override { answer(speech == AuthorizationStatus::authorized); }
    bool requestTrust() override { return trusted; }
    void openSettings(std::string_view /*pane*/) override {}

    AuthorizationStatus microphone = AuthorizationStatus::authorized;
    AuthorizationStatus speech = AuthorizationStatus::authorized;
    bool trusted = true;
};

/// A field that is what its record says; its text is handed out only where the contents are asked for.
class FakeField final : public Field {
public:
    std::expected<FieldRecord, FieldFault> look(FieldLook depth) override;
    std::expected<std::string, FieldFault> text(TextRange range) override;

    FieldRecord record;
    std::optional<FieldFault> fault; ///< of every look
    std::expected<std::string, FieldFault> rangeText = std::unexpected(FieldFault::noText);
    int looks = 0;
};

/// An application in front, Mail, with one field that has the focus.
class FakeDesktop final : public Accessibility, public Workspace {
public:
    FakeDesktop() { focus(DictationContext::FieldKind::multiLine); }

    std::expected<FieldPointer, FieldFault> focusedField() override;
    std::optional<RunningApplication> frontmostApplication() override { return front; }

    /// A field of this kind, with its role and text, has the focus from now on.
    void focus(DictationContext::FieldKind kind);
    void setText(std::string text) { field->record.text = std::move(text); }

    std::optional<RunningApplication> front = RunningApplication{4711, "Mail", "com.example.mail"};
    std::shared_ptr<FakeField> field;
    bool isFieldKnown = true;
};

/// A clipboard in memory, and what programs do with it.
class FakeClipboard final : public Clipboard {
public:
    class Offer;

    explicit FakeClipboard(MainQueue& queue) : queue_(queue) {}
    Task<ClipboardSnapshot> capture() override;
    void write(ClipboardSnapshot newContents) override;
    std::shared_ptr<ClipboardOffer> writeText(std::string_view text, ClipboardHistory newHistory) override;

    /// The user copies something.
    void copy(ClipboardSnapshot newContents);
    /// What a program gets that pastes now.
    std::string text() const;

    ClipboardSnapshot contents;
    std::optional<ClipboardHistory> history; ///< of the text that is there
    std::shared_ptr<Offer> offer;            ///< the last one
    Duration captureDelay{};

private:
    MainQueue& queue_;
};

class FakeClipboard::Offer final : public ClipboardOffer {
public:
    bool isCurrent() const override { return current; }
    std::uint64_t completedReads() const override { return reads; }
    bool isBeingRead() const override { return beingRead; }

    bool current = true;
    std::uint64_t reads = 0;
    bool beingRead = false;
};

class FakePasteKey final : public PasteKey {
public:
    Task<> awaitFreeKeyboard() override {
        beforePress();
        co_return;
    }
    Task<bool> press(PasteShortcut shortcut) override {
        pressed.push_back(shortcut);
        if (works) onPress();
        co_return works;
    }

    std::vector<PasteShortcut> pressed;
    bool works = true;
    std::function<void()> beforePress = [] {};
    /// What the program in front does.
    std::function<void()> onPress = [] {};
};

} // namespace querlin
