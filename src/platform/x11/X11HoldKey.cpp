#include "platform/x11/X11HoldKey.h"

#include "foundation/Lifetime.h"
#include "platform/x11/HoldKeyStates.h"
#include "platform/x11/KeyStream.h"

#include <optional>

namespace querlin {

namespace {

/// A stream, and what it has posted: that comes to nothing once the stream is gone.
struct Listening {
    Lifetime lifetime;
    std::optional<KeyStream> stream; ///< the thread ends first
};

} // namespace

Registration X11HoldKey::listen(const HotkeyConfig& wanted, Handler handler) {
    using Kind = HoldKeyEvent::Kind;
    auto listening = std::make_unique<Listening>();
    auto tell =
        listening->lifetime.onMain(queue_, [this, handler = std::move(handler)](const HoldKeyEvent& event) {
            if (event.kind == Kind::ready) isReady_ = true;
            if (event.kind == Kind::lost) isReady_ = false;
            handler(event);
        });
    const auto report = [tell = std::move(tell)](Kind kind) {
        tell(HoldKeyEvent{kind, std::chrono::steady_clock::now()});
    };
    const auto states = std::make_shared<HoldKeyStates>(wanted); // Of the stream's thread alone.
    listening->stream.emplace(
        display_, KeyStream::Listener{.begun =
                                          [states, report](const HoldKeyStates::Keymap& held) {
                                              states->begin(held);
                                              report(Kind::ready);
                                          },
                                      .key =
                                          [states, report, own = ownKeys_](std::uint8_t key, bool isDown) {
                                              if (isDown && own->takePress(key)) return;
                                              const auto kind = states->take(key, isDown);
                                              if (kind) report(*kind);
                                          },
                                      .lost = [report] { report(Kind::lost); }});
    boundKey_ = wanted.displayName();
    return Registration([this, listening = std::move(listening)]() mutable {
        listening.reset();
        isReady_ = false;
    });
}

} // namespace querlin
