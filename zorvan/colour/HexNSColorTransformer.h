#pragma once

#include <zorvan/colour/NSValueTransformer.h>

#include <typeinfo>

namespace zorvan {

/// Turns hexadecimal colour text into an `NSColor` and back.
class HexNSColorTransformer : public NSValueTransformer {
public:
    /// What `registerIfNeeded` registers it under.
    static constexpr const char* name = "HexNSColorTransformer";

    /// Registers one under `name` unless something is.
    static void registerIfNeeded();
    /// `NSColor`.
    [[nodiscard]] static const std::type_info& transformedValueClass() noexcept;
    /// Colours become text again.
    [[nodiscard]] static constexpr bool allowsReverseTransformation() noexcept { return true; }

    /// Text (`std::string`, `std::string_view` or `const char*`) gives its colour, absent when it
    /// does not parse; anything else gives black.
    [[nodiscard]] std::any transformedValue(const std::any& value) const override;
    /// An `NSColor` gives its text, as a `std::string`; anything else "#000000".
    [[nodiscard]] std::any reverseTransformedValue(const std::any& value) const override;
};

} // namespace zorvan
