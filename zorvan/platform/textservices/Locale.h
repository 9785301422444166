#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

namespace zorvan {

/// The language and region whose customs a text for people follows, by an identifier such as
/// "fr_CA".
class Locale {
public:
    /// The locale of `identifier`; an identifier that says nothing known means the root locale.
    explicit Locale(std::string_view identifier);

    /// The locale of the environment as it was at the first call, or the one last given to
    /// `setCurrent`. The "C" and "POSIX" locales, whose order is that of bytes, mean American
    /// English.
    static Locale current();

    /// Makes `locale` the current one in every thread.
    static void setCurrent(const Locale& locale);

    /// Changes whenever `setCurrent` is called; for what is kept per locale.
    static std::uint64_t generation() noexcept;

    /// As ICU writes it: "fr_CA".
    /// @{
    const std::string& identifier() const& noexcept { return identifier_; }
    std::string identifier() && noexcept { return std::move(identifier_); }
    /// @}

    friend bool operator==(const Locale&, const Locale&) = default;

private:
    std::string identifier_;
};

} // namespace zorvan
