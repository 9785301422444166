#pragma once

#include <array>
#include <cstdint>
#include <utility>

namespace zorvan::internal {

/// What a code point means to the boundaries between characters.
enum class BreakClass : std::uint8_t {
    other,
    carriageReturn,
    lineFeed,
    control, // ill-formed bytes as well
    extend,  // of combining class 0
    extendMark,
    linker, // the virama of a script that makes conjuncts
    joiner,
    regionalIndicator,
    prepend,
    spacingMark,
    hangulL,
    hangulV,
    hangulT,
    hangulLV,
    hangulLVT,
    pictograph,
    consonant, // of a script that makes conjuncts
    count
};

/// What has been read of the current character, as far as it decides about the next code point.
enum class BreakState : std::uint8_t {
    any,
    carriageReturn,
    control,
    prepend,
    hangulL,
    hangulV,
    hangulT,
    pictograph,
    pictographJoiner,
    regionalIndicator,
    consonant,
    linkedConsonant,
    count
};

struct BreakStep {
    bool breaks;
    BreakState next;
};

/// The state in which the text starts: a boundary comes before whatever follows.
inline constexpr BreakState startOfText = BreakState::control;

/// The class of a code point; a negative one stands for ill-formed bytes.
BreakClass breakClass(std::int32_t codePoint) noexcept;

/// The state after a code point that begins a character.
constexpr BreakState stateAfter(BreakClass c) noexcept {
    constexpr std::pair<BreakClass, BreakState> states[] = {
        {BreakClass::carriageReturn, BreakState::carriageReturn},
        {BreakClass::lineFeed, BreakState::control},
        {BreakClass::control, BreakState::control},
        {BreakClass::prepend, BreakState::prepend},
        {BreakClass::hangulL, BreakState::hangulL},
        {BreakClass::hangulV, BreakState::hangulV},
        {BreakClass::hangulLV, BreakState::hangulV},
        {BreakClass::hangulT, BreakState::hangulT},
        {BreakClass::hangulLVT, BreakState::hangulT},
        {BreakClass::pictograph, BreakState::pictograph},
        {BreakClass::regionalIndicator, BreakState::regionalIndicator},
        {BreakClass::consonant, BreakState::consonant},
    };
    for (const auto& [begun, state] : states)
        if (begun == c)
            return state;
    return BreakState::any;
}

/// The state after a mark that the current character takes in.
constexpr BreakState stateAfterMark(BreakState state, BreakClass mark) noexcept {
    const bool extends =
        mark == BreakClass::extend || mark == BreakClass::extendMark || mark == BreakClass::linker;
    if (state == BreakState::pictograph && extends)
        return BreakState::pictograph;
    if (state == BreakState::pictograph && mark == BreakClass::joiner)
        return BreakState::pictographJoiner;
    if (state == BreakState::consonant || state == BreakState::linkedConsonant) {
        if (mark == BreakClass::linker)
            return BreakState::linkedConsonant;
        if (mark == BreakClass::extendMark || mark == BreakClass::joiner)
            return state;
    }
    return BreakState::any;
}

/// Whether a code point that is neither control nor mark joins the character before it.
constexpr bool joins(BreakState state, BreakClass c) noexcept {
    constexpr std::pair<BreakState, BreakClass> joining[] = {
        {BreakState::hangulL, BreakClass::hangulL},
        {BreakState::hangulL, BreakClass::hangulV},
        {BreakState::hangulL, BreakClass::hangulLV},
        {BreakState::hangulL, BreakClass::hangulLVT},
        {BreakState::hangulV, BreakClass::hangulV},
        {BreakState::hangulV, BreakClass::hangulT},
        {BreakState::hangulT, BreakClass::hangulT},
        {BreakState::pictographJoiner, BreakClass::pictograph},
        {BreakState::regionalIndicator, BreakClass::regionalIndicator},
        {BreakState::linkedConsonant, BreakClass::consonant},
    };
    for (const auto& [before, joined] : joining)
        if (before == state && joined == c)
            return true;
    return state == BreakState::prepend;
}

constexpr BreakStep computeStep(BreakState state, BreakClass c) noexcept {
    if (state == BreakState::carriageReturn)
        return {c != BreakClass::lineFeed, stateAfter(c)};
    const bool isControl =
        c == BreakClass::carriageReturn || c == BreakClass::lineFeed || c == BreakClass::control;
    if (state == BreakState::control || isControl)
        return {true, stateAfter(c)};
    if (c == BreakClass::extend || c == BreakClass::extendMark || c == BreakClass::linker ||
        c == BreakClass::joiner || c == BreakClass::spacingMark)
        return {false, stateAfterMark(state, c)};
    // Two regional indicators make a flag, which takes no third.
    if (state == BreakState::regionalIndicator && c == BreakClass::regionalIndicator)
        return {false, BreakState::any};
    return {!joins(state, c), stateAfter(c)};
}

inline constexpr auto stepTable = [] {
    constexpr auto states = static_cast<std::size_t>(BreakState::count);
    constexpr auto classes = static_cast<std::size_t>(BreakClass::count);
    std::array<std::array<BreakStep, classes>, states> table{};
    for (std::size_t s = 0; s < states; ++s)
        for (std::size_t c = 0; c < classes; ++c)
            table[s][c] = computeStep(static_cast<BreakState>(s), static_cast<BreakClass>(c));
    return table;
}();

constexpr BreakStep step(BreakState state, BreakClass c) noexcept {
    return stepTable[static_cast<std::size_t>(state)][static_cast<std::size_t>(c)];
}

/// Whether a boundary lies between code points of these classes whatever stands before them.
constexpr bool alwaysBreaks(BreakClass before, BreakClass after) noexcept {
    const bool dependsOnMore =
        (after == BreakClass::pictograph && before == BreakClass::joiner) ||
        (after == BreakClass::regionalIndicator && before == BreakClass::regionalIndicator) ||
        (after == BreakClass::consonant &&
         (before == BreakClass::linker || before == BreakClass::extendMark ||
          before == BreakClass::joiner));
    return !dependsOnMore && step(step(startOfText, before).next, after).breaks;
}

} // namespace zorvan::internal
