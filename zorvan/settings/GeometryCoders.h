#pragma once

#include <zorvan/numbers-geometry/CGPoint.h>
#include <zorvan/numbers-geometry/CGRect.h>
#include <zorvan/numbers-geometry/CGSize.h>
#include <zorvan/settings/StoredUserDefaultsCoder.h>

#include <optional>
#include <string_view>

namespace zorvan {

/// Stored as a dictionary with the numbers "x" and "y". Absent when one is missing or no number;
/// other keys are left out of account.
class CGPointUDC : public StoredUserDefaultsCoder<CGPoint> {};

/// Stored as a dictionary with the numbers "width" and "height", read likewise.
class CGSizeUDC : public StoredUserDefaultsCoder<CGSize> {};

/// Stored as a dictionary with the numbers "x", "y", "width" and "height", read likewise. A
/// negative width or height is stored without its sign, beside the origin as it is.
class CGRectUDC : public StoredUserDefaultsCoder<CGRect> {};

} // namespace zorvan
