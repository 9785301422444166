#pragma once

#include <zorvan/platform/textservices/NSAttributedString.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace zorvan::internal {

std::string htmlDocument(const NSAttributedString& text);
std::string rtfDocument(const NSAttributedString& text);

/// The units that end a paragraph; a carriage return and its line feed end one together.
inline constexpr std::u16string_view paragraphEnds = u"\n\r\u2029";

/// Where the paragraph after the one that ends at `end` begins.
constexpr std::size_t paragraphAfter(std::u16string_view units, std::size_t end) noexcept {
    return end + (units.substr(end).starts_with(u"\r\n") ? 2 : 1);
}

/// Whether a truth value is there and set.
bool isSet(const AttributeDictionary& attributes, std::string_view name) noexcept;
/// Of the paragraph, at the left where nothing is said.
TextAlignment alignmentOf(const AttributeDictionary& attributes) noexcept;
/// Above 0 a superscript, below a subscript.
std::int64_t superscriptLevel(const AttributeDictionary& attributes) noexcept;

/// Whether following a link to this address does no more than show a page or write a letter: its
/// scheme is http, https, ftp or mailto, or it has none.
bool isHarmlessLink(std::string_view address);

/// A component from 0 to 1 as a byte, rounded; outside that range, and for NaN, the nearest end.
int colorByte(double component) noexcept;

/// A real as plain decimal text with at most two places, within what documents can say.
std::string documentNumber(double value);

} // namespace zorvan::internal
