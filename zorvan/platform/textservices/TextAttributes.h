#pragma once

#include <zorvan/platform/foundation/NameLiteral.h>

#include <concepts>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <variant>

namespace zorvan {

/// A colour of text: sRGB components and opacity, each from 0 to 1.
struct TextColor {
    double red = 0;   ///< From 0 to 1.
    double green = 0; ///< From 0 to 1.
    double blue = 0;  ///< From 0 to 1.
    double alpha = 1; ///< 1 is opaque.

    constexpr TextColor() noexcept = default;
    /// The components as they are.
    constexpr TextColor(double r, double g, double b, double a = 1) noexcept
        : red(r), green(g), blue(b), alpha(a) {}

    /// From any colour record with the fields `r`, `g`, `b`, `a`.
    template <class Color>
    requires requires(const Color& c) {
        { c.r } -> std::convertible_to<double>;
        { c.g } -> std::convertible_to<double>;
        { c.b } -> std::convertible_to<double>;
        { c.a } -> std::convertible_to<double>;
    }
    constexpr TextColor(const Color& c) noexcept : TextColor(c.r, c.g, c.b, c.a) {}

    friend constexpr bool operator==(const TextColor&, const TextColor&) = default;
};

/// A font by family name and size in points.
struct TextFont {
    /// As the desktop has it; another one takes its place when it is missing.
    std::string family = "Helvetica";
    double size = 12;      ///< In points.
    bool isBold = false;   ///< Whether it is set in bold type.
    bool isItalic = false; ///< Whether it is set in italics.

    friend bool operator==(const TextFont&, const TextFont&) = default;
};

/// Where the lines of a paragraph stand.
enum class TextAlignment { left, right, center, justified };

/// The value of an attribute.
using AttributeValue =
    std::variant<bool, std::int64_t, double, std::string, TextColor, TextFont, TextAlignment>;

/// Attributes by name. The names under `AttributeName` are drawn and exported; an application may
/// add its own, which travel with the text.
using AttributeDictionary = std::map<std::string, AttributeValue, std::less<>>;

namespace AttributeName {
inline constexpr NameLiteral font = "NSFont";                        ///< a TextFont
inline constexpr NameLiteral foregroundColor = "NSColor";            ///< a TextColor
inline constexpr NameLiteral backgroundColor = "NSBackgroundColor";  ///< a TextColor
inline constexpr NameLiteral underlineStyle = "NSUnderline";         ///< a bool
inline constexpr NameLiteral strikethroughStyle = "NSStrikethrough"; ///< a bool
inline constexpr NameLiteral link = "NSLink";                        ///< the address, as text
inline constexpr NameLiteral superscript = "NSSuperScript"; ///< an integer; below 0 a subscript
/// A TextAlignment; the first character of a paragraph decides for all of it.
inline constexpr NameLiteral alignment = "NSAlignment";
} // namespace AttributeName

/// The value of an attribute when it is there and has the type asked for.
template <class T>
const T* attribute(const AttributeDictionary& attributes, std::string_view name) noexcept {
    const auto found = attributes.find(name);
    return found == attributes.end() ? nullptr : std::get_if<T>(&found->second);
}
/// The value would be gone before it was read.
template <class T>
const T* attribute(const AttributeDictionary&& attributes, std::string_view name) = delete;

} // namespace zorvan
