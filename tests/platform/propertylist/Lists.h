#pragma once

#include <zorvan/platform/propertylist/PropertyListFile.h>

#include <limits>
#include <string>
#include <string_view>

/// What a text of bytes reads as.
inline std::optional<zorvan::PropertyList> decoded(std::string_view bytes,
                                                   std::string* reason = nullptr) {
    return zorvan::propertylist::decode(std::as_bytes(std::span(bytes)), reason);
}

/// A list that holds every kind of value, at its limits. Both forms keep all of it.
inline zorvan::PropertyList everyKind() {
    using namespace zorvan;
    using Limits = std::numeric_limits<std::int64_t>;
    const PropertyList::Array numbers = {0,
                                         255,
                                         256,
                                         65536,
                                         std::int64_t{4294967296},
                                         -1,
                                         Limits::max(),
                                         Limits::min(),
                                         0.1,
                                         -1e300,
                                         5e-324,
                                         1.0 / 3,
                                         std::numeric_limits<double>::infinity(),
                                         true,
                                         false};
    Data data;
    PropertyList::Array blocks;
    for (int i = 0; i < 20; ++i) {
        blocks.emplace_back(data);
        data.push_back(static_cast<std::byte>(255 - i));
    }
    const Date start{};
    return PropertyList::Dictionary{
        {"numbers", numbers},
        {"data", blocks},
        {"dates",
         PropertyList::Array{Date::min(), Date::max(), start, start - std::chrono::seconds(1),
                             start + std::chrono::hours(24 * 20000)}},
        {"texts", PropertyList::Array{"", "plain", "a < b && c > \"d\"", "caf\u00E9 \U0001F600",
                                      "line\r\nbreak\ttab", "fifteen letters"}},
        {"empty", PropertyList::Dictionary{{"array", PropertyList::Array{}},
                                           {"dictionary", PropertyList::Dictionary{}}}},
        {"", "empty key"},
        {"\u00FCber & <key>", "key"},
    };
}

inline zorvan::PropertyList nested(std::size_t depth) {
    zorvan::PropertyList list = "leaf";
    for (std::size_t i = 0; i < depth; ++i)
        list = zorvan::PropertyList::Array{std::move(list)};
    return list;
}
