#include <zorvan/text/NSBundle.h>

#include <zorvan/platform/bundles/DesktopIcon.h>

namespace zorvan {

std::optional<NSNumber> number(const NSBundle& bundle, std::string_view key) {
    const PropertyList* value = bundle.objectForInfoDictionaryKey(key);
    const auto* found = value ? value->as<NSNumber>() : nullptr;
    return found ? std::optional(*found) : std::nullopt;
}

std::optional<bool> bool_(const NSBundle& bundle, std::string_view key) {
    const PropertyList* value = bundle.objectForInfoDictionaryKey(key);
    return value ? value->as<bool>() : std::nullopt;
}

std::optional<URL> url(const NSBundle& bundle, std::string_view key) {
    const std::optional<std::string> text = string(bundle, key);
    return text ? URL::make({.string = *text}) : std::nullopt;
}

std::optional<std::string> name(const NSBundle& bundle) { return string(bundle, "CFBundleName"); }

std::optional<std::string> versionString(const NSBundle& bundle) {
    return string(bundle, "CFBundleVersion");
}

std::optional<std::string> shortVersionString(const NSBundle& bundle) {
    return string(bundle, "CFBundleShortVersionString");
}

std::optional<std::string> longVersionString(const NSBundle& bundle) {
    return string(bundle, "CFBundleLongVersionString");
}

BundleVersion version(const NSBundle& bundle) {
    const std::optional<std::string> text = shortVersionString(bundle);
    return text ? BundleVersion::make(*text).value_or(BundleVersion::zero) : BundleVersion::zero;
}

std::optional<URL> jsonURL(const NSBundle& bundle, std::string_view resource) {
    return bundle.URLForResource(resource, "json");
}

std::optional<URL> rtfURL(const NSBundle& bundle, std::string_view resource) {
    return bundle.URLForResource(resource, "rtf");
}

std::optional<URL> plistURL(const NSBundle& bundle, std::string_view resource,
                            std::optional<std::string_view> subdirectory) {
    return bundle.URLForResource(resource, "plist", subdirectory);
}

std::optional<URL> htmlURL(const NSBundle& bundle, std::string_view resource,
                           std::optional<std::string_view> subdirectory) {
    return bundle.URLForResource(resource, "html", subdirectory);
}

std::optional<URL> applicationIconURL(const NSBundle& bundle, std::int64_t size) {
    return desktop::iconOfBundle(bundle, size);
}

} // namespace zorvan
