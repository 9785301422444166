#include <zorvan/text/BundleVersion.h>

#include <zorvan/platform/bundles/NSBundle.h>
#include <zorvan/text/NSBundle.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <system_error>

namespace zorvan {

namespace {

// The tab and the space separators, as UTF-8.
constexpr std::string_view spaces[] = {
    "\t",     " ",      "\u00A0", "\u1680", "\u2000", "\u2001", "\u2002", "\u2003", "\u2004",
    "\u2005", "\u2006", "\u2007", "\u2008", "\u2009", "\u200A", "\u202F", "\u205F", "\u3000",
};

std::size_t spaceAtStart(std::string_view text) {
    for (const std::string_view space : spaces)
        if (text.starts_with(space))
            return space.size();
    return 0;
}

std::size_t spaceAtEnd(std::string_view text) {
    for (const std::string_view space : spaces)
        if (text.ends_with(space))
            return space.size();
    return 0;
}

std::string_view trimmed(std::string_view text) {
    while (const std::size_t length = spaceAtStart(text))
        text.remove_prefix(length);
    while (const std::size_t length = spaceAtEnd(text))
        text.remove_suffix(length);
    return text;
}

std::int64_t component(std::string_view text) {
    if (text.starts_with('+')) {
        text.remove_prefix(1);
        if (text.starts_with('-'))
            return 0;
    }
    std::int64_t number = 0;
    const char* const end = text.data() + text.size();
    const std::from_chars_result read = std::from_chars(text.data(), end, number);
    return read.ec == std::errc() && read.ptr == end ? number : 0;
}

void append(std::string& text, std::int64_t number) {
    std::array<char, 24> digits;
    const std::to_chars_result end =
        std::to_chars(digits.data(), digits.data() + digits.size(), number);
    text.append(digits.data(), end.ptr);
}

} // namespace

std::optional<BundleVersion> BundleVersion::make(std::string_view text) noexcept {
    text = trimmed(text);
    std::array<std::int64_t, 3> components{};
    for (std::int64_t& number : components) {
        const std::size_t dot = std::min(text.find('.'), text.size());
        number = component(text.substr(0, dot));
        text.remove_prefix(std::min(dot + 1, text.size()));
    }
    return BundleVersion(components[0], components[1], components[2]);
}

std::string BundleVersion::rawValue() const {
    std::string text;
    append(text, major);
    text += '.';
    append(text, minor);
    text += '.';
    append(text, patch);
    return text;
}

bool BundleVersion::isCurrent() const { return *this == version(*NSBundle::mainBundle()); }

} // namespace zorvan
