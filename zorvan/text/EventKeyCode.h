#pragma once

#include <cstdint>

namespace zorvan {

/// The hardware code of a key in a keyboard event: it says which key on the board was pressed, not
/// which character it gives.
///
/// The named keys are settings of the whole process: read them to compare with an event, assign to
/// them to fit another keyboard arrangement. They start with the positions of an AZERTY board, from
/// the moment the library is loaded; nothing is kept between launches. Reading and assigning are
/// meant for the main thread: nothing guards one against the other.
///
///     EventKeyCode::letterA = EventKeyCode(0);   // QWERTY
///     if (EventKeyCode(event.keyCode) == EventKeyCode::letterA) ...
struct EventKeyCode {
    /// A code.
    struct RawValue {
        std::uint16_t rawValue;
    };

    std::uint16_t rawValue; ///< What the keyboard sends.

    /// Any code will do.
    /// @{
    constexpr explicit EventKeyCode(std::uint16_t code) noexcept : rawValue(code) {}
    constexpr explicit EventKeyCode(RawValue argument) noexcept : rawValue(argument.rawValue) {}
    /// @}

    friend constexpr bool operator==(const EventKeyCode&, const EventKeyCode&) noexcept = default;

    /// The number row.
    /// @{
    static EventKeyCode digit0, digit1, digit2, digit3, digit4;
    static EventKeyCode digit5, digit6, digit7, digit8, digit9;
    /// @}

    /// The key with that legend.
    /// @{
    static EventKeyCode letterA, letterB, letterC, letterD, letterE, letterF, letterG;
    static EventKeyCode letterH, letterI, letterJ, letterK, letterL, letterM, letterN;
    static EventKeyCode letterO, letterP, letterQ, letterR, letterS, letterT, letterU;
    static EventKeyCode letterV, letterW, letterX, letterY, letterZ;

    static EventKeyCode space, escape, tab;
    /// @}
    /// The main return key, not the one of the keypad.
    static EventKeyCode enter;
    /// The backspace key, not forward delete.
    static EventKeyCode delete_;
    /// The key with that legend.
    /// @{
    static EventKeyCode leftArrow, rightArrow, upArrow, downArrow;
    /// @}
};

} // namespace zorvan
