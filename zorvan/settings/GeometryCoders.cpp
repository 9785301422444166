#include <zorvan/settings/GeometryCoders.h>

#include <zorvan/settings/NSUserDefaults.h>

#include <array>
#include <cstddef>

namespace zorvan {

namespace {

/// The numbers under the names; absent unless all of them are there.
template <std::size_t count>
std::optional<std::array<double, count>> numbers(NSUserDefaults& store, std::string_view key,
                                                 const std::array<const char*, count>& names) {
    const auto dictionary = store.dictionaryForKey(key);
    if (!dictionary)
        return std::nullopt;
    std::array<double, count> values{};
    for (std::size_t i = 0; i < count; ++i) {
        const auto found = dictionary->find(names[i]);
        const auto* number = found == dictionary->end() ? nullptr : found->second.template as<NSNumber>();
        if (!number)
            return std::nullopt;
        values[i] = number->doubleValue();
    }
    return values;
}

} // namespace

std::optional<CGPoint> CGPointUDC::decode(NSUserDefaults& from, std::string_view key) const {
    const auto point = numbers<2>(from, key, {"x", "y"});
    return point ? std::optional(CGPoint((*point)[0], (*point)[1])) : std::nullopt;
}

void CGPointUDC::encode(const std::optional<CGPoint>& value, NSUserDefaults& to,
                        std::string_view key) const {
    if (value)
        to.setObject(PropertyList::Dictionary{{"x", value->x}, {"y", value->y}}, key);
    else
        to.removeObjectForKey(key);
}

std::optional<CGSize> CGSizeUDC::decode(NSUserDefaults& from, std::string_view key) const {
    const auto size = numbers<2>(from, key, {"width", "height"});
    return size ? std::optional(CGSize((*size)[0], (*size)[1])) : std::nullopt;
}

void CGSizeUDC::encode(const std::optional<CGSize>& value, NSUserDefaults& to,
                       std::string_view key) const {
    if (value)
        to.setObject(PropertyList::Dictionary{{"width", value->width}, {"height", value->height}},
                     key);
    else
        to.removeObjectForKey(key);
}

std::optional<CGRect> CGRectUDC::decode(NSUserDefaults& from, std::string_view key) const {
    const auto rect = numbers<4>(from, key, {"x", "y", "width", "height"});
    return rect ? std::optional(CGRect((*rect)[0], (*rect)[1], (*rect)[2], (*rect)[3]))
                : std::nullopt;
}

void CGRectUDC::encode(const std::optional<CGRect>& value, NSUserDefaults& to,
                       std::string_view key) const {
    if (value)
        to.setObject(PropertyList::Dictionary{{"x", value->origin.x},
                                              {"y", value->origin.y},
                                              {"width", value->width()},
                                              {"height", value->height()}},
                     key);
    else
        to.removeObjectForKey(key);
}

} // namespace zorvan
