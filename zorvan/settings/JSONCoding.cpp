#include <zorvan/settings/JSONCoding.h>

#include <zorvan/platform/propertylist/internal/TextForms.h>

#include <utility>

namespace zorvan {

namespace detail {

namespace {
constexpr double twoToThe63 = 9223372036854775808.0; // beyond which all reals are whole
}

std::int64_t signedInteger(const JSON& json) {
    if (const auto* real = json.as<double>()) {
        if (*real >= -twoToThe63 && *real < twoToThe63 &&
            static_cast<double>(static_cast<std::int64_t>(*real)) == *real)
            return static_cast<std::int64_t>(*real);
        throw JSONError("there is no integer");
    }
    if (json.as<std::uint64_t>())
        throw JSONError("an integer does not fit its type");
    return expected<std::int64_t>(json, "integer");
}

std::uint64_t unsignedInteger(const JSON& json) {
    if (const auto* large = json.as<std::uint64_t>())
        return *large;
    if (const auto* real = json.as<double>(); real && *real >= twoToThe63 && *real < 2 * twoToThe63)
        return static_cast<std::uint64_t>(*real);
    const std::int64_t integer = signedInteger(json);
    if (integer < 0)
        throw JSONError("an integer does not fit its type");
    return static_cast<std::uint64_t>(integer);
}

double real(const JSON& json) {
    if (const auto* integer = json.as<std::int64_t>())
        return static_cast<double>(*integer);
    if (const auto* integer = json.as<std::uint64_t>())
        return static_cast<double>(*integer);
    return expected<double>(json, "number");
}

} // namespace detail

JSON JSONCoding<Date>::encode(Date value) { return propertylist::secondsFromReference(value); }

Date JSONCoding<Date>::decode(const JSON& json) {
    const double seconds = detail::real(json);
    if (!(seconds >= propertylist::secondsFromReference(Date::min()) &&
          seconds <= propertylist::secondsFromReference(Date::max())))
        throw JSONError("a date is out of range");
    return *propertylist::dateFromReference(seconds);
}

JSON JSONCoding<Data>::encode(const Data& value) { return internal::encodeBase64(value); }

Data JSONCoding<Data>::decode(const JSON& json) {
    const auto& text = detail::expected<std::string>(json, "text");
    // Whole groups without blanks: JSON is strict where property lists are lenient.
    const bool isStrict = text.size() % 4 == 0 && text.find_first_of(" \t\r\n") == text.npos;
    auto bytes = isStrict ? internal::decodeBase64(text) : std::nullopt;
    if (!bytes)
        throw JSONError("data is not in base 64");
    return std::move(*bytes);
}

URL JSONCoding<URL>::decode(const JSON& json) {
    if (auto url = URL::make({.string = detail::expected<std::string>(json, "text")}))
        return std::move(*url);
    throw JSONError("a text is no URL");
}

} // namespace zorvan
