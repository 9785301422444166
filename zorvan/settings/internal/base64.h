#pragma once

#include <zorvan/platform/foundation/Data.h>

#include <optional>
#include <string>
#include <string_view>

namespace zorvan::internal {

std::string encodedBase64(const Data& bytes);
/// Absent when the text is anything but whole groups of four, padded.
std::optional<Data> decodedBase64(std::string_view text);

} // namespace zorvan::internal
