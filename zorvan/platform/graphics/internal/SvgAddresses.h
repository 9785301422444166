#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace zorvan {

/// Whether a reference is an address that holds what it refers to.
bool isDataAddress(std::string_view reference);

/// What such an address holds; absent when that is not well-formed.
std::optional<std::string> contentOfDataAddress(std::string_view reference);

/// Whether a style might take a document, or more style, from an address that holds it. Fonts in
/// such addresses are none, nor are pictures.
bool takesContentFromAddress(std::string_view style);

} // namespace zorvan
