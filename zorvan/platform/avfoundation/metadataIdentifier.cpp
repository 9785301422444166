#include <zorvan/platform/avfoundation/internal/metadataIdentifier.h>

#include <zorvan/platform/foundation/internal/ascii.h>

#include <algorithm>

extern "C" {
#include <libavformat/avformat.h>
}

namespace zorvan::avfoundation {
namespace {

bool isSameWord(std::string_view given, std::string_view lower) {
    return std::equal(given.begin(), given.end(), lower.begin(), lower.end(),
                      [](char g, char l) { return internal::lowered(g) == l; });
}

} // namespace

MetadataNames::MetadataNames(const AVFormatContext& input) {
    container_ = input.iformat->name;
    container_ = container_.substr(0, container_.find(','));
    if (container_ != "mov")
        return;
    const AVDictionaryEntry* const brand = av_dict_get(input.metadata, "major_brand", nullptr, 0);
    // A QuickTime file need not state a brand.
    const bool isQuickTime = !brand || std::string_view(brand->value) == "qt  ";
    family_ = isQuickTime ? Family::quickTime : Family::iso;
}

bool MetadataNames::isOfFileFormat(std::string_view name) noexcept {
    return name == "major_brand" || name == "minor_version" || name == "compatible_brands";
}

std::string MetadataNames::identifier(std::string_view name) const {
    if (name == "creation_time")
        return std::string(containerDateIdentifier);
    if (family_ == Family::other) {
        if (isSameWord(name, "location"))
            return "common/location";
        if (isSameWord(name, "date"))
            return std::string(containerDateIdentifier);
        return std::string(container_) + '/' + std::string(name);
    }
    if (name.starts_with("com."))
        return "mdta/" + std::string(name);
    if (name == "location")
        return family_ == Family::quickTime ? "udta/%A9xyz" : "uiso/%A9xyz";
    if (name == "date")
        return family_ == Family::quickTime ? "udta/%A9day" : "itsk/%A9day";
    return (family_ == Family::quickTime ? "udta/" : "uiso/") + std::string(name);
}

} // namespace zorvan::avfoundation
