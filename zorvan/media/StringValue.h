#pragma once

#include <zorvan/platform/foundation/Required.h>

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

namespace zorvan {

/// What every identifier that is nothing but a text shares: its raw value, equality and a hash. Any
/// text will do; the constants name the known ones.
///
/// A constant points to the text in the program and needs no code to run at its start. The text of
/// any other value is shared by its copies.
template <class Self>
class StringValue {
public:
    /// Any text.
    struct RawValue {
        Required<std::string> rawValue;
    };
    /// A text that is never freed, such as one between quotes.
    struct Literal {
        Required<const char*> literal;
    };

    /// Keeps the text.
    explicit StringValue(RawValue argument)
        : owned_(std::make_shared<const std::string>(std::move(argument.rawValue.value))),
          text_(*owned_) {}
    /// Points to the text.
    explicit constexpr StringValue(Literal argument) noexcept : text_(argument.literal.value) {}
    // No moves: what was moved from would keep pointing to a text that it no longer owns.
    StringValue(const StringValue&) noexcept = default;
    StringValue& operator=(const StringValue&) noexcept = default;

    /// Lives as long as the value or a copy of it.
    /// @{
    [[nodiscard]] std::string_view rawValue() const& noexcept { return text_; }
    [[nodiscard]] std::string rawValue() && { return std::string(text_); }
    /// @}

    /// Of the same text, byte by byte.
    friend bool operator==(const StringValue& a, const StringValue& b) noexcept {
        return a.text_ == b.text_;
    }

protected:
    ~StringValue() = default;

private:
    std::shared_ptr<const std::string> owned_;
    std::string_view text_;
};

namespace detail {

template <class Self>
void takeStringValue(const StringValue<Self>&);

} // namespace detail

/// A type that derives from `StringValue`.
template <class T>
concept StringIdentifier = requires(const T& value) {
    detail::takeStringValue(value);
};

} // namespace zorvan

template <zorvan::StringIdentifier T>
struct std::hash<T> {
    std::size_t operator()(const T& value) const noexcept {
        return std::hash<std::string_view>()(value.rawValue());
    }
};
