#pragma once

#include "foundation/Registration.h"

#include <cstdint>
#include <functional>
#include <memory>

namespace querlin {

/// The numbers of the keyboard stream. They are this port's own: adapters translate into them.
namespace KeyEventType {
constexpr std::uint32_t keyDown = 10; ///< a key that is no modifier; repeats while it is held
constexpr std::uint32_t keyUp = 11;
constexpr std::uint32_t flagsChanged = 12; ///< a modifier went down or up
/// The stream was interrupted, and can be asked to go on (`EventTap::enable`).
constexpr std::uint32_t disabledByTimeout = 0xFFFFFFFE;
constexpr std::uint32_t disabledByUserInput = 0xFFFFFFFF;

/// The bit of a type in a mask of types.
constexpr std::uint32_t maskBit(std::uint32_t type) { return 1U << type; }
} // namespace KeyEventType

/// Physical keys, by their place on the keyboard and whatever a layout puts there.
namespace VirtualKey {
constexpr std::int64_t d = 2;
constexpr std::int64_t space = 49;
constexpr std::int64_t rightCommand = 54;
constexpr std::int64_t leftCommand = 55;
constexpr std::int64_t leftShift = 56;
constexpr std::int64_t leftOption = 58;
constexpr std::int64_t leftControl = 59;
constexpr std::int64_t rightShift = 60;
constexpr std::int64_t rightOption = 61;
constexpr std::int64_t rightControl = 62;
constexpr std::int64_t fn = 63;
/// Any key that has no number here.
constexpr std::int64_t other = 0xFFFF;
} // namespace VirtualKey

/// Bits of the flag word: which modifiers are down behind the event. The generic bit of a kind stands for
/// either key, the device bit for one of them.
namespace KeyFlag {
constexpr std::uint64_t shift = 0x20000;
constexpr std::uint64_t control = 0x40000;
constexpr std::uint64_t alternate = 0x80000;
constexpr std::uint64_t command = 0x100000;

constexpr std::uint64_t leftControlDevice = 0x1;
constexpr std::uint64_t leftShiftDevice = 0x2;
constexpr std::uint64_t rightShiftDevice = 0x4;
constexpr std::uint64_t leftCommandDevice = 0x8;
constexpr std::uint64_t rightCommandDevice = 0x10;
constexpr std::uint64_t leftOptionDevice = 0x20;
constexpr std::uint64_t rightOptionDevice = 0x40;
constexpr std::uint64_t rightControlDevice = 0x2000;
constexpr std::uint64_t fnDevice = 0x800000;
} // namespace KeyFlag

struct KeyEvent {
    std::uint32_t type = 0;
    std::int64_t keyCode = 0;
    std::uint64_t flags = 0;

    bool operator==(const KeyEvent&) const = default;
};

/// Listens to the whole desktop's keyboard for as long as it lives; swallows, changes and delays nothing.
/// Main thread.
class EventTap {
public:
    virtual ~EventTap() = default;
    /// Takes an interrupted stream up again, or rests.
    virtual void enable(bool enabled) = 0;
    virtual bool isEnabled() const = 0;
};

/// The desktop's keyboard, as far as it may be listened to.
class KeyboardEvents {
public:
    using Handler = std::function<void(const KeyEvent&)>;

    virtual ~KeyboardEvents() = default;
    /// A tap for the event types of the mask; null if the desktop refuses. It rests until it is enabled. The
    /// handler is called on the main thread, never inside this call, and not any more once the tap is gone.
    virtual std::unique_ptr<EventTap> createTap(std::uint32_t eventMask, Handler handler) = 0;
    /// A second, independent look at the modifiers, to compare with. Empty if the desktop refuses.
    virtual Registration addMonitor(Handler handler) = 0;
};

} // namespace querlin
