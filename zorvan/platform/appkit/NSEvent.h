#pragma once

#include <zorvan/numbers-geometry/CGPoint.h>

#include <cstdint>
#include <memory>
#include <string>

namespace zorvan {

class NSTrackingArea;

/// What the mouse or the keyboard did, as a window is told of it and hands it on to its views.
struct NSEvent {
    /// What happened. The left button is the first, the right one the second; `other` buttons are
    /// those after.
    enum class EventType : std::int64_t {
        leftMouseDown = 1,
        leftMouseUp = 2,
        rightMouseDown = 3,
        rightMouseUp = 4,
        mouseMoved = 5,
        leftMouseDragged = 6,
        rightMouseDragged = 7,
        mouseEntered = 8,
        mouseExited = 9,
        keyDown = 10,
        keyUp = 11,
        scrollWheel = 22,
        otherMouseDown = 25,
        otherMouseUp = 26,
        otherMouseDragged = 27,
    };

    /// A set of keys that are held down.
    struct ModifierFlags {
        /// A bit for each key.
        std::uint64_t rawValue = 0;

        /// Shift and Control under their own names; `option` is Alt, `command` the Super key of the
        /// desktop.
        /// @{
        static const ModifierFlags shift, control, option, command;
        /// @}

        /// Whether every key of `other` is held down here; true of an empty set.
        constexpr bool contains(ModifierFlags other) const noexcept {
            return (rawValue & other.rawValue) == other.rawValue;
        }
        friend constexpr bool operator==(ModifierFlags, ModifierFlags) noexcept = default;
        /// The keys of either set.
        friend constexpr ModifierFlags operator|(ModifierFlags a, ModifierFlags b) noexcept {
            return {a.rawValue | b.rawValue};
        }
    };

    /// What happened, which says what of the rest counts.
    EventType type = EventType::mouseMoved;
    /// In points from the bottom left corner of the window, y growing upward.
    CGPoint locationInWindow = {};
    /// Which press of a quick row of them this one is.
    std::int64_t clickCount = 1;
    /// The area that the mouse entered, left or moved in; null for every other event.
    std::shared_ptr<NSTrackingArea> trackingArea = nullptr;
    /// The keys that were held down.
    ModifierFlags modifierFlags = {};

    // Of a key.

    /// What the key types with the modifiers held; empty for keys that type nothing.
    std::string characters = {};
    /// What the key types without modifiers, in lower case.
    std::string charactersIgnoringModifiers = {};
    /// The key by its place, as `EventKeyCode` names it; 65535 for a key without a name there.
    std::uint16_t keyCode = 65535;
    /// Whether the key is held down and types again.
    bool isARepeat = false;

    /// Of the wheel and the touchpad, in points: how far what is shown is to move, to the right and
    /// down.
    /// @{
    double scrollingDeltaX = 0;
    double scrollingDeltaY = 0;
    /// @}
};

inline constexpr NSEvent::ModifierFlags NSEvent::ModifierFlags::shift{1 << 17};
inline constexpr NSEvent::ModifierFlags NSEvent::ModifierFlags::control{1 << 18};
inline constexpr NSEvent::ModifierFlags NSEvent::ModifierFlags::option{1 << 19};
inline constexpr NSEvent::ModifierFlags NSEvent::ModifierFlags::command{1 << 20};

/// Whether the event is that of the key which gives this character, in lower case, with exactly
/// those modifiers; whether it is pressed or let go does not count. Never for an empty key.
inline bool isKeyEquivalent(const NSEvent& event, const std::string& key,
                            NSEvent::ModifierFlags modifiers) {
    return !key.empty() && event.charactersIgnoringModifiers == key &&
           event.modifierFlags == modifiers;
}

} // namespace zorvan
