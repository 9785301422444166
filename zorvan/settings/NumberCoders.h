#pragma once

#include <zorvan/settings/UserDefaultsCoder.h>

#include <cstdint>
#include <optional>
#include <string_view>

namespace zorvan {

// Each is stored as a number, absent when nothing is stored, and otherwise whatever the store makes
// of what there is: of a mistyped value often 0 or false. See `NSUserDefaults`.

/// A truth value, stored as one.
class BoolUDC {
public:
    /// See `UserDefaultsCoder`.
    /// @{
    using CodableType = bool;
    std::optional<bool> decode(NSUserDefaults& from, std::string_view key) const;
    void encode(std::optional<bool> value, NSUserDefaults& to, std::string_view key) const;
    /// @}
};

/// An integer of 64 bits, stored as a number.
class IntUDC : public NumericUserDefaultsCoder<IntUDC, std::int64_t> {
public:
    /// See `UserDefaultsCoder`.
    /// @{
    std::optional<std::int64_t> decode(NSUserDefaults& from, std::string_view key) const;
    void encode(std::optional<std::int64_t> value, NSUserDefaults& to, std::string_view key) const;
    /// @}
};

/// A stored negative number is absent.
class UIntUDC : public NumericUserDefaultsCoder<UIntUDC, std::uint64_t> {
public:
    /// See `UserDefaultsCoder`.
    /// @{
    std::optional<std::uint64_t> decode(NSUserDefaults& from, std::string_view key) const;
    void encode(std::optional<std::uint64_t> value, NSUserDefaults& to, std::string_view key) const;
    /// @}
};

/// A real of single precision, stored as a number.
class FloatUDC : public NumericUserDefaultsCoder<FloatUDC, float> {
public:
    /// See `UserDefaultsCoder`.
    /// @{
    std::optional<float> decode(NSUserDefaults& from, std::string_view key) const;
    void encode(std::optional<float> value, NSUserDefaults& to, std::string_view key) const;
    /// @}
};

/// A real, stored as a number.
class DoubleUDC : public NumericUserDefaultsCoder<DoubleUDC, double> {
public:
    /// See `UserDefaultsCoder`.
    /// @{
    std::optional<double> decode(NSUserDefaults& from, std::string_view key) const;
    void encode(std::optional<double> value, NSUserDefaults& to, std::string_view key) const;
    /// @}
};

/// The same as `DoubleUDC`, for what is a `CGFloat` to other readers.
class CGFloatUDC : public NumericUserDefaultsCoder<CGFloatUDC, double> {
public:
    /// See `UserDefaultsCoder`.
    /// @{
    std::optional<double> decode(NSUserDefaults& from, std::string_view key) const;
    void encode(std::optional<double> value, NSUserDefaults& to, std::string_view key) const;
    /// @}
};

} // namespace zorvan
