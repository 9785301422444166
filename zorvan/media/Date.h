#pragma once

#include <zorvan/platform/foundation/Data.h>

#include <string>

namespace zorvan {

/// The date as EXIF writes it, "2024:05:31 23:59:59", in the time zone of the process (the name
/// promises UTC, but no zone is set). Fractions of a second are dropped, downwards.
[[nodiscard]] std::string UTCFormatted(Date date);

} // namespace zorvan
