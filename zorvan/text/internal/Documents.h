#pragma once

#include <zorvan/platform/textservices/NSAttributedString.h>

#include <string>
#include <string_view>

namespace zorvan::internal {

std::string htmlDocument(const NSAttributedString& text);
std::string rtfDocument(const NSAttributedString& text);

/// Whether following a link to this address does no more than show a page or write a letter: its
/// scheme is http, https, ftp or mailto, or it has none.
bool isHarmlessLink(std::string_view address);

/// A component from 0 to 1 as a byte, rounded; outside that range, and for NaN, the nearest end.
int colorByte(double component) noexcept;

/// A real as plain decimal text with at most two places, within what documents can say.
std::string documentNumber(double value);

} // namespace zorvan::internal
