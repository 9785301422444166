#pragma once

#include <zorvan/platform/foundation/NSNumber.h>
#include <zorvan/platform/foundation/internal/UTF16.h>
#include <zorvan/platform/foundation/internal/UTF8.h>
#include <zorvan/platform/foundation/internal/base64.h>

#include <optional>
#include <string>
#include <string_view>

namespace zorvan::propertylist {

/// Decoding and encoding of the leaf values. What reads gives an absent result for text that is not
/// of the form.

/// The scalar values of a UTF-8 text, one after the other.
class UTF8Reader {
public:
    explicit UTF8Reader(std::string_view text) : text_(text) {}
    bool atEnd() const { return position_ == text_.size(); }
    /// The next scalar value; absent when the bytes there are not UTF-8.
    std::optional<char32_t> next();

private:
    std::string_view text_;
    std::size_t position_ = 0;
};

using internal::appendUTF8;
using internal::isUTF8;

using internal::decodeBase64;
using internal::encodeBase64;

/// "2001-01-01T00:00:00Z".
std::optional<Date> decodeDate(std::string_view text);
std::string encodeDate(Date date);

/// Seconds since the start of 2001, which is where dates of binary lists count from. Absent for
/// NaN.
std::optional<Date> dateFromReference(double seconds);
double secondsFromReference(Date date);

/// Decimal, or hexadecimal after "0x".
std::optional<NSNumber> decodeInteger(std::string_view text);
std::optional<double> decodeReal(std::string_view text);
std::string encodeReal(double real);

} // namespace zorvan::propertylist
