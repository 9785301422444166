#pragma once

#include <zorvan/platform/foundation/Required.h>

#include <optional>
#include <string_view>

namespace zorvan {

/// A place on the earth, in degrees: north and east are positive.
struct Location {
    /// A text of the form that `make` reads.
    struct ISO6709 {
        Required<std::string_view> iso6709;
    };

    /// From -90, the south pole, to 90, the north pole, unless a text says more.
    double latitude = 0;
    double longitude = 0; ///< From -180 to 180, unless a text says more.

    /// Reads "+48.8577+002.2950+035.000/" and its like: a latitude of two, four or six digits
    /// (degrees, minutes, seconds), a longitude of three, five or seven, each with a sign and
    /// perhaps a decimal fraction of its last unit. What follows, an altitude, a reference system
    /// or anything else that does not begin with a digit, is not looked at; behind a line break
    /// there may be white space only.
    ///
    /// Absent for any other text. Numbers are taken as they are written: there are no bounds of 60
    /// minutes or 90 degrees. The same in every C locale.
    static std::optional<Location> make(ISO6709 text) noexcept;

    friend bool operator==(const Location&, const Location&) = default;
};

} // namespace zorvan
