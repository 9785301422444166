#include <zorvan/platform/textservices/NumberFormat.h>

#include <zorvan/platform/textservices/internal/PerLocale.h>
#include <zorvan/platform/textservices/internal/requireMemory.h>

#include <memory>
#include <unicode/numfmt.h>

namespace zorvan {

namespace {

struct PercentFormat {
    explicit PercentFormat(const Locale& locale) {
        UErrorCode status = U_ZERO_ERROR;
        format.reset(icu::NumberFormat::createPercentInstance(
            icu::Locale(locale.identifier().c_str()), status));
        internal::requireMemory(status);
    }

    std::unique_ptr<const icu::NumberFormat> format;
};

} // namespace

std::optional<std::string> percentText(double value) {
    thread_local internal::PerLocale<PercentFormat> formats;
    const auto& format = formats.forCurrentLocale().format;
    icu::UnicodeString units;
    std::string text;
    UErrorCode status = U_ZERO_ERROR;
    if (format)
        format->format(value, units, nullptr, status).toUTF8String(text);
    if (U_FAILURE(status))
        formats = {}; // a format in which something failed fails from then on
    internal::requireMemory(status);
    return text.empty() ? std::nullopt : std::optional(text);
}

} // namespace zorvan
