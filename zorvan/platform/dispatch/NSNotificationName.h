#pragma once

#include <compare>
#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

namespace zorvan {

/// The name of a notification, as small and as cheap to copy and compare as a pointer.
///
/// Making one from text looks the text up in a table of the process, which keeps every name for
/// good: keep names in constants rather than making them for each post, and do not make names from
/// data without bound.
class NSNotificationName {
public:
    /// The name with that text; see above for what it costs.
    /// @{
    NSNotificationName(std::string_view text);
    NSNotificationName(const std::string& text) : NSNotificationName(std::string_view(text)) {}
    NSNotificationName(const char* text) : NSNotificationName(std::string_view(text)) {}
    /// @}

    /// The text.
    const std::string& rawValue() const noexcept { return *text_; }

    /// Of the same text; one comparison of pointers.
    friend bool operator==(NSNotificationName a, NSNotificationName b) noexcept {
        return a.text_ == b.text_;
    }
    /// In the order of the texts, byte by byte.
    friend std::strong_ordering operator<=>(NSNotificationName a, NSNotificationName b) noexcept {
        return *a.text_ <=> *b.text_;
    }

    /// Of the name as a value; differs from one run of the program to the next.
    std::size_t hash() const noexcept {
        return (reinterpret_cast<std::size_t>(text_) >> 4) * 0x9E3779B97F4A7C15ULL;
    }

private:
    const std::string* text_;
};

} // namespace zorvan

template <>
struct std::hash<zorvan::NSNotificationName> {
    std::size_t operator()(zorvan::NSNotificationName name) const noexcept { return name.hash(); }
};
