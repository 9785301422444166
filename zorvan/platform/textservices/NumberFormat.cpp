#include <zorvan/platform/textservices/NumberFormat.h>

#include <zorvan/platform/textservices/internal/PerLocale.h>

#include <memory>
#include <unicode/numfmt.h>

namespace zorvan {

namespace {

struct PercentFormat {
    explicit PercentFormat(const Locale& locale) {
        UErrorCode status = U_ZERO_ERROR;
        format.reset(icu::NumberFormat::createPercentInstance(
            icu::Locale(locale.identifier().c_str()), status));
    }

    std::unique_ptr<const icu::NumberFormat> format;
};

} // namespace

std::optional<std::string> percentText(double value) {
    thread_local internal::PerLocale<PercentFormat> formats;
    const auto& format = formats.forCurrentLocale().format;
    icu::UnicodeString units;
    std::string text;
    if (format)
        format->format(value, units).toUTF8String(text);
    return text.empty() ? std::nullopt : std::optional(text);
}

} // namespace zorvan
