#pragma once

#include <zorvan/platform/foundation/Data.h>

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace zorvan::internal {

/// The bytes of a text in base 64, in which blanks and line ends do not count and the padding may
/// be missing. Absent for any other text.
std::optional<Data> decodeBase64(std::string_view text);

/// With padding, in one line.
std::string encodeBase64(std::span<const std::byte> bytes);

} // namespace zorvan::internal
