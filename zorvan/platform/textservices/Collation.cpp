#include <zorvan/platform/textservices/Collation.h>

#include <zorvan/platform/textservices/internal/AsciiOrder.h>
#include <zorvan/platform/textservices/internal/PerLocale.h>

#include <unicode/localpointer.h>
#include <unicode/ucol.h>

#include <algorithm>
#include <cstdint>
#include <limits>

namespace zorvan {

namespace {

/// A collator that looks at base letters and numbers only.
icu::LocalUCollatorPointer openCollator(const Locale& locale) {
    UErrorCode status = U_ZERO_ERROR;
    icu::LocalUCollatorPointer collator(ucol_open(locale.identifier().c_str(), &status));
    if (U_FAILURE(status))
        return icu::LocalUCollatorPointer();
    ucol_setStrength(collator.getAlias(), UCOL_PRIMARY);
    ucol_setAttribute(collator.getAlias(), UCOL_NUMERIC_COLLATION, UCOL_ON, &status);
    return collator;
}

class NameOrder {
public:
    explicit NameOrder(const Locale& locale)
        : collator_(openCollator(locale)), ascii_(collator_.getAlias()) {}

    ComparisonResult compare(std::string_view a, std::string_view b) const {
        if (const auto order = ascii_.compare(a, b))
            return result(*order < 0 ? -1 : *order > 0);
        constexpr std::size_t longest = std::numeric_limits<std::int32_t>::max();
        if (collator_.isNull() || std::max(a.size(), b.size()) > longest)
            return result(a.compare(b));
        UErrorCode status = U_ZERO_ERROR;
        return result(ucol_strcollUTF8(collator_.getAlias(), a.data(),
                                       static_cast<std::int32_t>(a.size()), b.data(),
                                       static_cast<std::int32_t>(b.size()), &status));
    }

private:
    static ComparisonResult result(int order) noexcept {
        if (order == 0)
            return ComparisonResult::orderedSame;
        return order < 0 ? ComparisonResult::orderedAscending : ComparisonResult::orderedDescending;
    }

    icu::LocalUCollatorPointer collator_;
    internal::AsciiOrder ascii_;
};

internal::PerLocale<NameOrder>& orders() {
    thread_local internal::PerLocale<NameOrder> perLocale;
    return perLocale;
}

} // namespace

ComparisonResult compareNames(std::string_view a, std::string_view b) {
    return orders().forCurrentLocale().compare(a, b);
}

ComparisonResult compareNames(std::string_view a, std::string_view b, const Locale& locale) {
    return orders().forLocale(locale).compare(a, b);
}

} // namespace zorvan
