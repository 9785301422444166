#pragma once

#include <zorvan/platform/foundation/PropertyList.h>

#include <cstdint>
#include <limits>
#include <random>
#include <string>

/// Some value, of any kind, with what is hard to keep: signs of zero, NaN, texts that are no UTF-8.
inline zorvan::PropertyList randomValue(std::mt19937& random, int depth) {
    using zorvan::PropertyList;
    const auto bytes = [&] {
        std::string text(random() % 12, ' ');
        for (char& c : text)
            c = static_cast<char>(random());
        return text;
    };
    switch (random() % (depth > 0 ? 9 : 7)) {
    case 0:
        return random() % 2 == 0;
    case 1:
        if (random() % 2 == 0)
            return ~std::uint64_t{random()};
        return static_cast<std::int64_t>(random() * 0x1'0000'0001ULL);
    case 2: {
        const double reals[] = {0.0,
                                -0.0,
                                1.0,
                                0.1,
                                std::numeric_limits<double>::infinity(),
                                std::numeric_limits<double>::quiet_NaN(),
                                5e-324};
        return reals[random() % std::size(reals)];
    }
    case 3:
        return bytes();
    case 4:
        return zorvan::Date(
            zorvan::Date::duration(static_cast<std::int64_t>(random()) * 2'000'000'001));
    case 5:
        return zorvan::Data(random() % 9, std::byte{0xFE});
    case 6:
        return std::string("plain");
    case 7: {
        PropertyList::Array items;
        for (auto left = random() % 5; left > 0; --left)
            items.push_back(randomValue(random, depth - 1));
        return items;
    }
    default: {
        PropertyList::Dictionary entries;
        for (auto left = random() % 5; left > 0; --left)
            entries.insert_or_assign(bytes(), randomValue(random, depth - 1));
        return entries;
    }
    }
}
