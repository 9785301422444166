#pragma once

#include <string>
#include <string_view>

namespace zorvan {

/// A name that the library defines, such as the key of an option: text that is there as long as the
/// program. It goes wherever a `std::string_view` does, and into a dictionary whose keys are
/// `std::string`.
class NameLiteral : public std::string_view {
public:
    /// Of a text that is never freed, such as one between quotes.
    constexpr NameLiteral(const char* text) noexcept : std::string_view(text) {}

    /// A copy.
    operator std::string() const { return std::string(data(), size()); }
};

} // namespace zorvan
