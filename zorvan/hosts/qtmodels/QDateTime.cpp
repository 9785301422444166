#include <zorvan/hosts/qtmodels/QDateTime.h>

#include <chrono>

namespace zorvan {

using std::chrono::milliseconds;

QDateTime toQDateTime(Date date) {
    const auto since = std::chrono::floor<milliseconds>(date.time_since_epoch());
    return QDateTime::fromMSecsSinceEpoch(since.count()).toUTC();
}

std::optional<Date> toDate(const QDateTime& time) {
    const milliseconds since(time.toMSecsSinceEpoch());
    // Rounded inwards: the last fraction of a millisecond at either end is left out.
    constexpr auto first = std::chrono::ceil<milliseconds>(Date::min().time_since_epoch());
    constexpr auto last = std::chrono::floor<milliseconds>(Date::max().time_since_epoch());
    if (!time.isValid() || since < first || since > last)
        return std::nullopt;
    return Date(since);
}

} // namespace zorvan
