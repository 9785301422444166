#pragma once

#include <cstddef>
#include <exception>
#include <functional>

namespace zorvan {

/// What `decodeRawKeyedDict` throws of its own.
class KeyedDecodingContainerError : public std::exception {
public:
    /// Why.
    enum class Case {
        /// A key of the dictionary is the raw value of none.
        unexpectedRawRepresentableKeyValue
    };
    /// The case, for `throw` and comparison.
    static constexpr Case unexpectedRawRepresentableKeyValue =
        Case::unexpectedRawRepresentableKeyValue;

    /// A case and its error stand for each other.
    /// @{
    KeyedDecodingContainerError(Case value) noexcept : value_(value) {}
    operator Case() const noexcept { return value_; }
    /// @}
    /// The name of the case.
    const char* what() const noexcept override { return "unexpectedRawRepresentableKeyValue"; }

    /// Of the same case.
    /// @{
    friend bool operator==(const KeyedDecodingContainerError& a,
                           const KeyedDecodingContainerError& b) noexcept {
        return a.value_ == b.value_;
    }
    friend bool operator==(const KeyedDecodingContainerError& a, Case b) noexcept {
        return a.value_ == b;
    }
    /// @}

private:
    Case value_;
};

} // namespace zorvan

template <>
struct std::hash<zorvan::KeyedDecodingContainerError> {
    std::size_t operator()(const zorvan::KeyedDecodingContainerError& error) const noexcept {
        return static_cast<std::size_t>(
            static_cast<zorvan::KeyedDecodingContainerError::Case>(error));
    }
};
