#pragma once

#include "foundation/Registration.h"
#include "foundation/Time.h"
#include "state/HotkeyConfig.h"

#include <cstdint>
#include <functional>
#include <string>

namespace querlin {

/// Something that happened to the hold key, and when.
struct HoldKeyEvent {
    enum class Kind : std::uint8_t {
        ready, ///< from here on the key is heard
        pressed,
        released,
        otherKeyPressed, ///< any other key went down while the hold key is held
        lost             ///< nothing is heard until the next `ready`; a hold has ended
    };

    Kind kind{};
    /// By the clock that `Clock::instant` reads.
    Instant at;
};

/// Where the desktop reports the key or combination that is held while dictating. It only listens: no key is
/// swallowed, changed or delayed. Main thread.
class HoldKey {
public:
    using Handler = std::function<void(const HoldKeyEvent&)>;

    virtual ~HoldKey() = default;
    /// Listens for `wanted` until the registration goes; for one key at a time. Empty where the desktop
    /// offers no way to listen. The handler is called on the main thread, never inside this call. Presses and
    /// releases take turns; a repeating key is pressed once.
    virtual Registration listen(const HotkeyConfig& wanted, Handler handler) = 0;
    /// Whether the key is heard at this moment.
    virtual bool isReady() const = 0;
    /// Whether `otherKeyPressed` is ever reported: not every desktop shows other keys to a program.
    virtual bool tellsOtherKeys() const = 0;
    /// The key that is really bound, in words for the user; some desktops let the user choose another one
    /// than the program wanted. Empty while none is.
    virtual std::string boundKey() const = 0;
};

} // namespace querlin
