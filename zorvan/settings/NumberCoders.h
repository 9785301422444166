#pragma once

#include <zorvan/settings/StoredUserDefaultsCoder.h>
#include <zorvan/settings/UserDefaultsCoder.h>

#include <cstdint>
#include <optional>
#include <string_view>

namespace zorvan {

// Each is stored as a number, absent when nothing is stored, and otherwise whatever the store makes
// of what there is: of a mistyped value often 0 or false. See `NSUserDefaults`.

/// A coder of the library for numbers.
template <class Self, class Number>
class StoredNumberUserDefaultsCoder : public StoredUserDefaultsCoder<Number>,
                                      public NumericUserDefaultsCoder<Self, Number> {
public:
    using CodableType = Number; ///< What is coded.
};

/// A truth value, stored as one.
class BoolUDC : public StoredUserDefaultsCoder<bool> {};

/// An integer of 64 bits, stored as a number.
class IntUDC : public StoredNumberUserDefaultsCoder<IntUDC, std::int64_t> {};

/// A stored negative number is absent.
class UIntUDC : public StoredNumberUserDefaultsCoder<UIntUDC, std::uint64_t> {};

/// A real of single precision, stored as a number.
class FloatUDC : public StoredNumberUserDefaultsCoder<FloatUDC, float> {};

/// A real, stored as a number.
class DoubleUDC : public StoredNumberUserDefaultsCoder<DoubleUDC, double> {};

/// The same as `DoubleUDC`, for what is a `CGFloat` to other readers.
class CGFloatUDC : public StoredNumberUserDefaultsCoder<CGFloatUDC, double> {};

} // namespace zorvan
