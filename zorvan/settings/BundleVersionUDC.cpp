#include <zorvan/settings/BundleVersionUDC.h>

#include <zorvan/settings/NSUserDefaults.h>

namespace zorvan {

std::optional<BundleVersion> BundleVersionUDC::decode(NSUserDefaults& from,
                                                      std::string_view key) const {
    const auto text = from.stringForKey(key);
    return text ? BundleVersion::make(*text) : std::nullopt;
}

void BundleVersionUDC::encode(const std::optional<BundleVersion>& value, NSUserDefaults& to,
                              std::string_view key) const {
    to.setObject(value ? std::optional<PropertyList>(value->rawValue()) : std::nullopt, key);
}

} // namespace zorvan
