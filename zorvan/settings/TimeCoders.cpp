#include <zorvan/settings/TimeCoders.h>

#include <zorvan/platform/foundation/internal/valueUnder.h>
#include <zorvan/settings/NSUserDefaults.h>

#include <utility>

namespace zorvan {

namespace {

PropertyList fieldsOf(const CMTime& time) {
    return PropertyList::Dictionary{{"value", time.value},
                                    {"timescale", time.timescale},
                                    {"flags", time.flags},
                                    {"epoch", time.epoch}};
}

/// The integer under a name when it fits.
template <class Integer>
bool read(const PropertyList::Dictionary& fields, std::string_view name, Integer& result) {
    const auto* number = internal::valueUnder<NSNumber>(fields, name);
    if (!number || !number->isInteger() || !std::in_range<Integer>(number->int64Value()))
        return false;
    result = static_cast<Integer>(number->int64Value());
    return true;
}

std::optional<CMTime> timeIn(const PropertyList::Dictionary& range, std::string_view name) {
    const auto* fields = internal::valueUnder<PropertyList::Dictionary>(range, name);
    CMTime time;
    const bool isWhole = fields && read(*fields, "value", time.value) &&
                         read(*fields, "timescale", time.timescale) &&
                         read(*fields, "flags", time.flags) && read(*fields, "epoch", time.epoch);
    return isWhole ? std::optional(time) : std::nullopt;
}

} // namespace

std::optional<CMTime> CMTimeUDC::decode(NSUserDefaults& from, std::string_view key) const {
    return CMTime({.seconds = from.doubleForKey(key)});
}

void CMTimeUDC::encode(const std::optional<CMTime>& value, NSUserDefaults& to,
                       std::string_view key) const {
    if (value)
        to.setDouble(value->seconds(), key);
}

std::optional<CMTimeRange> CMTimeRangeUDC::decode(NSUserDefaults& from,
                                                  std::string_view key) const {
    const auto fields = from.dictionaryForKey(key);
    if (!fields)
        return std::nullopt;
    const auto start = timeIn(*fields, "start");
    const auto duration = timeIn(*fields, "duration");
    if (!start || !duration)
        return std::nullopt;
    return CMTimeRange({.start = *start, .duration = *duration});
}

void CMTimeRangeUDC::encode(const std::optional<CMTimeRange>& value, NSUserDefaults& to,
                            std::string_view key) const {
    if (value)
        to.setObject(PropertyList::Dictionary{{"start", fieldsOf(value->start)},
                                              {"duration", fieldsOf(value->duration)}},
                     key);
}

} // namespace zorvan
