#include <zorvan/media/AVMetadataItem.h>

#include <zorvan/media/internal/parseDate.h>

namespace zorvan {

std::optional<std::string> AVMetadataItem::stringValue() const {
    const auto* const text = value.as<std::string>();
    return text ? std::optional(*text) : std::nullopt;
}

std::optional<Date> AVMetadataItem::dateValue() const {
    if (const auto* const date = value.as<Date>())
        return *date;
    const auto* const text = value.as<std::string>();
    return text ? parseDate(*text) : std::nullopt;
}

std::optional<Data> AVMetadataItem::dataValue() const {
    const auto* const bytes = value.as<Data>();
    return bytes ? std::optional(*bytes) : std::nullopt;
}

} // namespace zorvan
