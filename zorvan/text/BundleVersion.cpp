#include <zorvan/text/BundleVersion.h>

#include <zorvan/platform/bundles/NSBundle.h>
#include <zorvan/platform/textservices/Unicode.h>
#include <zorvan/text/NSBundle.h>
#include <zorvan/text/internal/decimalInteger.h>

#include <algorithm>
#include <array>

namespace zorvan {

std::optional<BundleVersion> BundleVersion::make(std::string_view text) noexcept {
    text = trimmed(text, CharacterSet::whitespaces);
    std::array<std::int64_t, 3> components{};
    for (std::int64_t& number : components) {
        const std::size_t dot = std::min(text.find('.'), text.size());
        number = internal::decimalInteger(text.substr(0, dot)).value_or(0);
        text.remove_prefix(std::min(dot + 1, text.size()));
    }
    return BundleVersion(components[0], components[1], components[2]);
}

std::string BundleVersion::rawValue() const {
    return std::to_string(major) + '.' + std::to_string(minor) + '.' + std::to_string(patch);
}

bool BundleVersion::isCurrent() const { return *this == version(*NSBundle::mainBundle()); }

} // namespace zorvan
