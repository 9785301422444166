#include <zorvan/platform/textservices/internal/CharacterBreaks.h>

#include <unicode/uchar.h>
#include <unicode/uscript.h>

#include <atomic>
#include <memory>
#include <new>
#include <utility>

namespace zorvan::internal {

namespace {

bool makesConjuncts(UChar32 c) {
    UErrorCode status = U_ZERO_ERROR;
    switch (uscript_getScript(c, &status)) {
    case USCRIPT_BENGALI:
    case USCRIPT_DEVANAGARI:
    case USCRIPT_GUJARATI:
    case USCRIPT_MALAYALAM:
    case USCRIPT_ORIYA:
    case USCRIPT_TELUGU:
        return true;
    default:
        return false;
    }
}

BreakClass extendClass(UChar32 c) {
    if (u_getIntPropertyValue(c, UCHAR_INDIC_SYLLABIC_CATEGORY) == U_INSC_VIRAMA &&
        makesConjuncts(c))
        return BreakClass::linker;
    return u_getCombiningClass(c) == 0 ? BreakClass::extend : BreakClass::extendMark;
}

BreakClass otherClass(UChar32 c) {
    if (u_hasBinaryProperty(c, UCHAR_EXTENDED_PICTOGRAPHIC))
        return BreakClass::pictograph;
    if (u_getIntPropertyValue(c, UCHAR_INDIC_SYLLABIC_CATEGORY) == U_INSC_CONSONANT &&
        makesConjuncts(c))
        return BreakClass::consonant;
    return BreakClass::other;
}

constexpr std::pair<UGraphemeClusterBreak, BreakClass> plainClasses[] = {
    {U_GCB_CR, BreakClass::carriageReturn},
    {U_GCB_LF, BreakClass::lineFeed},
    {U_GCB_CONTROL, BreakClass::control},
    {U_GCB_ZWJ, BreakClass::joiner},
    {U_GCB_REGIONAL_INDICATOR, BreakClass::regionalIndicator},
    {U_GCB_PREPEND, BreakClass::prepend},
    {U_GCB_SPACING_MARK, BreakClass::spacingMark},
    {U_GCB_L, BreakClass::hangulL},
    {U_GCB_V, BreakClass::hangulV},
    {U_GCB_T, BreakClass::hangulT},
    {U_GCB_LV, BreakClass::hangulLV},
    {U_GCB_LVT, BreakClass::hangulLVT},
};

BreakClass classFromProperties(UChar32 c) {
    const std::int32_t property = u_getIntPropertyValue(c, UCHAR_GRAPHEME_CLUSTER_BREAK);
    for (const auto& [value, plain] : plainClasses)
        if (property == value)
            return plain;
    return property == U_GCB_EXTEND ? extendClass(c) : otherClass(c);
}

constexpr int blockBits = 8;
constexpr std::size_t blockSize = 1u << blockBits;
using Block = std::array<BreakClass, blockSize>;

// Asking for three properties of each code point is slow, and a table of all of them would cost
// every program its start; so the classes are looked up a block at a time, when a text first needs
// them. The blocks live as long as the program.
std::array<std::atomic<const Block*>, 0x110000 / blockSize> blocks{};

const Block* fillBlock(std::size_t index) noexcept {
    auto block = std::unique_ptr<Block>(new (std::nothrow) Block);
    if (!block)
        return nullptr;
    for (std::size_t i = 0; i < blockSize; ++i)
        (*block)[i] = classFromProperties(static_cast<UChar32>(index * blockSize + i));
    const Block* expected = nullptr;
    if (!blocks[index].compare_exchange_strong(expected, block.get(), std::memory_order_acq_rel))
        return expected;
    return block.release();
}

} // namespace

BreakClass breakClass(std::int32_t codePoint) noexcept {
    if (codePoint < 0)
        return BreakClass::control;
    const auto index = static_cast<std::size_t>(codePoint) >> blockBits;
    const Block* block = blocks[index].load(std::memory_order_acquire);
    if (!block && !(block = fillBlock(index)))
        return classFromProperties(codePoint);
    return (*block)[static_cast<std::size_t>(codePoint) & (blockSize - 1)];
}

} // namespace zorvan::internal
