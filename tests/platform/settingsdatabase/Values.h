#pragma once

#include <zorvan/platform/foundation/PropertyList.h>

#include <cmath>
#include <cstdint>
#include <random>
#include <string>

/// Some value, of any kind, with what is hard to keep: signs of zero, NaN, texts that are no UTF-8.
inline zorvan::PropertyList randomValue(std::mt19937& random, int depth) {
    using zorvan::Date, zorvan::PropertyList;
    std::string bytes(random() % 12, ' ');
    for (char& c : bytes)
        c = static_cast<char>(random());
    const auto integer = static_cast<std::int64_t>(random() * 0x1'0000'0001ULL);
    const PropertyList leaves[] = {random() % 2 == 0,
                                   ~std::uint64_t{random()},
                                   integer,
                                   zorvan::Data(random() % 9, std::byte{0xFE}),
                                   Date(Date::duration(integer)),
                                   bytes,
                                   bytes};
    constexpr double reals[] = {0.0, -0.0, 1.0, 0.1, HUGE_VAL, NAN, 5e-324};
    const auto kind = random() % (depth > 0 ? 10 : 8);
    if (kind < 7)
        return leaves[kind];
    if (kind == 7)
        return reals[random() % std::size(reals)];
    PropertyList::Array items;
    PropertyList::Dictionary entries;
    for (auto left = random() % 5; left > 0; --left) {
        items.push_back(randomValue(random, depth - 1));
        entries.insert_or_assign(bytes + std::to_string(left), items.back());
    }
    return kind == 8 ? PropertyList(std::move(items)) : PropertyList(std::move(entries));
}
