#include <zorvan/platform/textservices/Collation.h>

#include <zorvan/platform/textservices/internal/AsciiOrder.h>
#include <zorvan/platform/textservices/internal/CodePoints.h>
#include <zorvan/platform/textservices/internal/PerLocale.h>
#include <zorvan/platform/textservices/internal/requireMemory.h>

#include <unicode/localpointer.h>
#include <unicode/uchar.h>
#include <unicode/ucol.h>
#include <unicode/ustring.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <limits>
#include <numeric>
#include <optional>
#include <string>
#include <utility>

namespace zorvan {

namespace {

/// A collator that looks at base letters and numbers only; null when there is none for the locale.
icu::LocalUCollatorPointer openCollator(const Locale& locale) {
    UErrorCode status = U_ZERO_ERROR;
    icu::LocalUCollatorPointer collator(ucol_open(locale.identifier().c_str(), &status));
    ucol_setAttribute(collator.getAlias(), UCOL_STRENGTH, UCOL_PRIMARY, &status);
    ucol_setAttribute(collator.getAlias(), UCOL_NUMERIC_COLLATION, UCOL_ON, &status);
    internal::requireMemory(status);
    return U_SUCCESS(status) ? std::move(collator) : icu::LocalUCollatorPointer();
}

/// Whether the names begin to differ within a number, or right behind one, that has digits beyond
/// ASCII. ICU compares what comes after the common part alone, and where a locale has an order of
/// its own, it does not see that such digits belong to a number that begins before.
bool differInNumberBeyondAscii(std::string_view a, std::string_view b) noexcept {
    const auto [endOfA, endOfB] = std::mismatch(a.begin(), a.end(), b.begin(), b.end());
    auto common = static_cast<std::size_t>(endOfA - a.begin());
    const auto isInside = [](std::string_view name, std::size_t at) {
        return at < name.size() && (static_cast<unsigned char>(name[at]) & 0xC0) == 0x80;
    };
    while (common > 0 && (isInside(a, common) || isInside(b, common)))
        --common;
    const auto isBeyondAscii = [](std::string_view name, std::size_t at) {
        return at < name.size() && static_cast<unsigned char>(name[at]) >= 0x80;
    };
    const auto hasSuchDigit = [&](std::string_view name) {
        std::size_t next = common;
        return isBeyondAscii(name, next) && u_isdigit(internal::nextCodePoint(name, next));
    };
    bool found = hasSuchDigit(a) || hasSuchDigit(b);
    std::size_t start = common;
    for (std::size_t at = common; at > 0 && u_isdigit(internal::previousCodePoint(a, at));
         start = at)
        found = found || isBeyondAscii(a, at);
    return found && start < common;
}

constexpr std::size_t longestName = std::numeric_limits<std::int32_t>::max();

/// The keys of many names, one after the other.
class SortKeys {
public:
    explicit SortKeys(std::size_t names) { ends_.reserve(names); }

    std::string& bytes() noexcept { return bytes_; }
    void endOfKey() { ends_.push_back(bytes_.size()); }

    std::string_view operator[](std::size_t name) const noexcept {
        const std::size_t start = name == 0 ? 0 : ends_[name - 1];
        return std::string_view(bytes_).substr(start, ends_[name] - start);
    }

private:
    std::string bytes_;
    std::vector<std::size_t> ends_;
};

/// Turns a name into what the collator reads, into a buffer that is kept from name to name.
std::span<const UChar> toUTF16(std::string_view name, std::vector<UChar>& units) {
    constexpr UChar32 replacement = 0xFFFD;
    units.resize(std::max(units.size(), name.size() + 1)); // never more units than bytes
    std::int32_t length = 0;
    UErrorCode status = U_ZERO_ERROR;
    u_strFromUTF8WithSub(units.data(), static_cast<std::int32_t>(units.size()), &length,
                         name.data(), static_cast<std::int32_t>(name.size()), replacement, nullptr,
                         &status);
    return {units.data(), static_cast<std::size_t>(length)};
}

class NameOrder {
public:
    explicit NameOrder(const Locale& locale)
        : collator_(openCollator(locale)), ascii_(collator_.getAlias()) {}

    ComparisonResult compare(std::string_view a, std::string_view b) const {
        if (const auto order = ascii_.compare(a, b))
            return result(*order < 0 ? -1 : *order > 0);
        if (collator_.isNull() || std::max(a.size(), b.size()) > longestName)
            return result(a.compare(b));
        if (differInNumberBeyondAscii(a, b))
            if (const auto keys = collatorKeys(std::array{a, b}))
                return result((*keys)[0].compare((*keys)[1]));
        UErrorCode status = U_ZERO_ERROR;
        const int order =
            ucol_strcollUTF8(collator_.getAlias(), a.data(), static_cast<std::int32_t>(a.size()),
                             b.data(), static_cast<std::int32_t>(b.size()), &status);
        internal::requireMemory(status);
        return result(order);
    }

    /// Keys whose bytes are in the order of the names; absent when only `compare` tells it.
    std::optional<SortKeys> keys(std::span<const std::string_view> names) const {
        if (auto keys = asciiKeys(names))
            return keys;
        if (collator_.isNull())
            return std::nullopt;
        return collatorKeys(names);
    }

private:
    std::optional<SortKeys> asciiKeys(std::span<const std::string_view> names) const {
        SortKeys keys(names.size());
        for (const std::string_view name : names) {
            if (!ascii_.appendKey(name, keys.bytes()))
                return std::nullopt;
            keys.endOfKey();
        }
        return keys;
    }

    std::optional<SortKeys> collatorKeys(std::span<const std::string_view> names) const {
        SortKeys keys(names.size());
        std::vector<UChar> units;
        std::array<std::uint8_t, 512> key;
        for (const std::string_view name : names) {
            if (name.size() >= longestName)
                return std::nullopt;
            const std::span<const UChar> text = toUTF16(name, units);
            const auto length = static_cast<std::int32_t>(text.size());
            const std::int32_t needed =
                ucol_getSortKey(collator_.getAlias(), text.data(), length, key.data(), key.size());
            if (needed <= 0)
                return std::nullopt;
            const std::size_t start = keys.bytes().size();
            keys.bytes().resize(start + static_cast<std::size_t>(needed));
            auto* const place = reinterpret_cast<std::uint8_t*>(&keys.bytes()[start]);
            if (static_cast<std::size_t>(needed) <= key.size())
                std::memcpy(place, key.data(), static_cast<std::size_t>(needed));
            else if (ucol_getSortKey(collator_.getAlias(), text.data(), length, place, needed) !=
                     needed)
                return std::nullopt;
            keys.endOfKey();
        }
        return keys;
    }

    static ComparisonResult result(int order) noexcept {
        return static_cast<ComparisonResult>((order > 0) - (order < 0));
    }

    icu::LocalUCollatorPointer collator_;
    internal::AsciiOrder ascii_;
};

internal::PerLocale<NameOrder>& orders() {
    thread_local internal::PerLocale<NameOrder> perLocale;
    return perLocale;
}

/// A key of which most comparisons see only the first bytes.
struct KeyedName {
    std::uint64_t head; // of the key's rest, the first byte highest
    std::string_view key;
    std::size_t position;

    KeyedName(std::string_view whole, std::size_t shared, std::size_t place)
        : head(0), key(whole.substr(shared)), position(place) {
        std::array<unsigned char, sizeof head> bytes{};
        std::memcpy(bytes.data(), key.data(), std::min(key.size(), bytes.size()));
        for (const unsigned char byte : bytes)
            head = head << 8 | byte;
    }

    friend bool operator<(const KeyedName& a, const KeyedName& b) noexcept {
        if (a.head != b.head)
            return a.head < b.head;
        const int order = a.key.compare(b.key);
        return order != 0 ? order < 0 : a.position < b.position;
    }
};

std::size_t commonPrefix(const SortKeys& keys, std::size_t count) {
    const std::string_view first = keys[0];
    std::size_t shared = first.size();
    for (std::size_t i = 1; i < count; ++i) {
        const std::string_view key = keys[i].substr(0, shared);
        shared = static_cast<std::size_t>(
            std::mismatch(key.begin(), key.end(), first.begin()).first - key.begin());
    }
    return shared;
}

std::vector<std::size_t> orderOfKeys(const SortKeys& keys, std::size_t count) {
    std::vector<KeyedName> keyed;
    keyed.reserve(count);
    const std::size_t shared = commonPrefix(keys, count);
    for (std::size_t i = 0; i < count; ++i)
        keyed.emplace_back(keys[i], shared, i);
    std::sort(keyed.begin(), keyed.end());
    std::vector<std::size_t> order;
    order.reserve(count);
    for (const KeyedName& name : keyed)
        order.push_back(name.position);
    return order;
}

std::vector<std::size_t> orderBy(const NameOrder& nameOrder,
                                 std::span<const std::string_view> names) {
    if (names.empty())
        return {};
    if (const std::optional<SortKeys> keys = nameOrder.keys(names))
        return orderOfKeys(*keys, names.size());
    std::vector<std::size_t> order(names.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::stable_sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) {
        return nameOrder.compare(names[a], names[b]) == ComparisonResult::orderedAscending;
    });
    return order;
}

} // namespace

ComparisonResult compareNames(std::string_view a, std::string_view b) {
    return orders().forCurrentLocale().compare(a, b);
}

ComparisonResult compareNames(std::string_view a, std::string_view b, const Locale& locale) {
    return orders().forLocale(locale).compare(a, b);
}

std::vector<std::size_t> orderOfNames(std::span<const std::string_view> names) {
    return orderBy(orders().forCurrentLocale(), names);
}

std::vector<std::size_t> orderOfNames(std::span<const std::string_view> names,
                                      const Locale& locale) {
    return orderBy(orders().forLocale(locale), names);
}

} // namespace zorvan
