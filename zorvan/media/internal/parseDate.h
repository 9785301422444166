#pragma once

#include <zorvan/platform/foundation/Data.h>

#include <optional>
#include <string_view>

namespace zorvan {

/// The date that the text writes, in the forms that `AVMetadataItem::dateValue` reads.
std::optional<Date> parseDate(std::string_view text) noexcept;

} // namespace zorvan
