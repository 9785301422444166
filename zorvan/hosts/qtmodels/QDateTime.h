#pragma once

#include <zorvan/platform/foundation/Data.h>

#include <QDateTime>
#include <optional>

namespace zorvan {

/// The moment in UTC, the milliseconds rounded down; `toLocalTime()` shows it to a person.
[[nodiscard]] QDateTime toQDateTime(Date date);

/// Absent for an invalid time, and for one that a `Date` cannot hold (before 1678 or after 2261).
[[nodiscard]] std::optional<Date> toDate(const QDateTime& time);

} // namespace zorvan
