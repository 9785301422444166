#pragma once

#include <cstddef>
#include <exception>
#include <functional>

namespace zorvan {

/// What `decodeRawKeyedDict` throws of its own.
class KeyedDecodingContainerError : public std::exception {
public:
    enum class Case {
        /// A key of the dictionary is the raw value of none.
        unexpectedRawRepresentableKeyValue
    };
    static constexpr Case unexpectedRawRepresentableKeyValue =
        Case::unexpectedRawRepresentableKeyValue;

    KeyedDecodingContainerError(Case value) noexcept : value_(value) {}
    operator Case() const noexcept { return value_; }
    const char* what() const noexcept override { return "unexpectedRawRepresentableKeyValue"; }

    friend bool operator==(const KeyedDecodingContainerError& a,
                           const KeyedDecodingContainerError& b) noexcept {
        return a.value_ == b.value_;
    }
    friend bool operator==(const KeyedDecodingContainerError& a, Case b) noexcept { return a.value_ == b; }

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
