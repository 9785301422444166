#include <zorvan/platform/textservices/NumberFormat.h>

#include <zorvan/platform/textservices/Unicode.h>
#include <zorvan/platform/textservices/internal/PerLocale.h>

#include <unicode/localpointer.h>
#include <unicode/unum.h>

#include <algorithm>
#include <cstdint>

namespace zorvan {

namespace {

class PercentFormat {
public:
    explicit PercentFormat(const Locale& locale) {
        UErrorCode status = U_ZERO_ERROR;
        format_.adoptInstead(
            unum_open(UNUM_PERCENT, nullptr, 0, locale.identifier().c_str(), nullptr, &status));
    }

    std::optional<std::string> text(double value) const {
        if (format_.isNull())
            return std::nullopt;
        std::u16string buffer(64, u'\0');
        std::int32_t length = print(value, buffer);
        if (static_cast<std::size_t>(std::max(length, 0)) > buffer.size()) {
            buffer.resize(static_cast<std::size_t>(length));
            length = print(value, buffer);
        }
        if (length <= 0)
            return std::nullopt;
        return utf8FromUTF16({buffer.data(), static_cast<std::size_t>(length)});
    }

private:
    /// The length the text needs, 0 when there is none.
    std::int32_t print(double value, std::u16string& buffer) const {
        UErrorCode status = U_ZERO_ERROR;
        const std::int32_t length =
            unum_formatDouble(format_.getAlias(), value, buffer.data(),
                              static_cast<std::int32_t>(buffer.size()), nullptr, &status);
        const bool succeeded = U_SUCCESS(status) || status == U_BUFFER_OVERFLOW_ERROR;
        return succeeded ? length : 0;
    }

    icu::LocalUNumberFormatPointer format_;
};

} // namespace

std::optional<std::string> percentText(double value) {
    thread_local internal::PerLocale<PercentFormat> formats;
    return formats.forCurrentLocale().text(value);
}

} // namespace zorvan
