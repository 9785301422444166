#include <zorvan/platform/messagebus/internal/WireFormat.h>

#include <zorvan/platform/foundation/internal/UTF8.h>

#include <bit>
#include <chrono>
#include <concepts>
#include <cstdint>
#include <limits>
#include <stdexcept>
#include <string_view>
#include <utility>

// A message is a version byte, the name, then the object and the user information, each led by a
// byte that says whether it is there. Integers are little-endian; lengths and counts have 32 bits,
// and texts, bytes, arrays and dictionaries begin with theirs. A value begins with its tag. The
// keys of a dictionary ascend.

namespace zorvan::internal {

namespace {

constexpr std::uint8_t version = 1;

enum class Tag : std::uint8_t { boolean, integer, real, text, date, data, array, dictionary, unsignedInteger };

using Nanoseconds = std::chrono::duration<std::int64_t, std::nano>;

class Writer {
public:
    template <std::unsigned_integral Integer>
    void integer(Integer value) {
        for (std::size_t i = 0; i < sizeof value; ++i)
            bytes_.push_back(static_cast<std::byte>(value >> (8 * i) & 0xFF));
        requireSize();
    }

    void flag(bool value) { integer(static_cast<std::uint8_t>(value)); }

    void text(std::string_view text) {
        if (!isUTF8(text))
            throw std::invalid_argument(
                "A notification between processes holds text not in UTF-8.");
        bytes(std::as_bytes(std::span(text)));
    }

    void dictionary(const PropertyList::Dictionary& dictionary, std::size_t depth) {
        count(dictionary.size(), depth);
        for (const auto& [key, value] : dictionary) {
            text(key);
            this->value(value, depth + 1);
        }
    }

    Data take() { return std::move(bytes_); }

private:
    void value(const PropertyList& value, std::size_t depth) {
        if (++values_ > maxWireValues)
            throw std::length_error("A notification between processes holds too many values.");
        if (const auto* number = value.as<NSNumber>()) {
            this->number(*number);
        } else if (const auto* text = value.as<std::string>()) {
            tag(Tag::text);
            this->text(*text);
        } else if (const auto* date = value.as<Date>()) {
            tag(Tag::date);
            const Nanoseconds sinceEpoch = date->time_since_epoch();
            integer(static_cast<std::uint64_t>(sinceEpoch.count()));
        } else if (const auto* data = value.as<Data>()) {
            tag(Tag::data);
            bytes(*data);
        } else if (const auto* array = value.as<PropertyList::Array>()) {
            tag(Tag::array);
            count(array->size(), depth);
            for (const PropertyList& item : *array)
                this->value(item, depth + 1);
        } else if (const auto* nested = value.as<PropertyList::Dictionary>()) {
            tag(Tag::dictionary);
            dictionary(*nested, depth);
        }
    }

    void number(const NSNumber& number) {
        if (number.isBool()) {
            tag(Tag::boolean);
            flag(number.boolValue());
        } else if (number.isUnsigned()) {
            tag(Tag::unsignedInteger);
            integer(number.uint64Value());
        } else if (number.isInteger()) {
            tag(Tag::integer);
            integer(static_cast<std::uint64_t>(number.int64Value()));
        } else {
            tag(Tag::real);
            integer(std::bit_cast<std::uint64_t>(number.doubleValue()));
        }
    }

    void tag(Tag tag) { integer(static_cast<std::uint8_t>(tag)); }

    void count(std::size_t count, std::size_t depth) {
        if (depth >= maxWireDepth)
            throw std::length_error("A notification between processes is nested too deep.");
        if (count > maxWireValues)
            throw std::length_error("A notification between processes holds too many values.");
        integer(static_cast<std::uint32_t>(count));
    }

    void bytes(std::span<const std::byte> bytes) {
        if (bytes.size() > maxWireSize)
            throw std::length_error("A notification between processes is too large.");
        integer(static_cast<std::uint32_t>(bytes.size()));
        bytes_.insert(bytes_.end(), bytes.begin(), bytes.end());
        requireSize();
    }

    void requireSize() const {
        if (bytes_.size() > maxWireSize)
            throw std::length_error("A notification between processes is too large.");
    }

    Data bytes_;
    std::size_t values_ = 0;
};

/// Every function answers absent, or false, once something does not fit.
class Reader {
public:
    explicit Reader(std::span<const std::byte> bytes) : rest_(bytes) {}

    bool isAtEnd() const noexcept { return rest_.empty(); }

    template <std::unsigned_integral Integer>
    std::optional<Integer> integer() {
        if (rest_.size() < sizeof(Integer))
            return std::nullopt;
        Integer value = 0;
        for (std::size_t i = 0; i < sizeof(Integer); ++i)
            value = static_cast<Integer>(value | static_cast<Integer>(rest_[i]) << (8 * i));
        rest_ = rest_.subspan(sizeof(Integer));
        return value;
    }

    std::optional<bool> flag() {
        const auto value = integer<std::uint8_t>();
        return value && *value <= 1 ? std::optional(*value == 1) : std::nullopt;
    }

    std::optional<std::string> text() {
        const auto read = bytes();
        if (!read)
            return std::nullopt;
        const std::string_view text(reinterpret_cast<const char*>(read->data()), read->size());
        return isUTF8(text) ? std::optional<std::string>(text) : std::nullopt;
    }

    std::optional<PropertyList::Dictionary> dictionary(std::size_t depth) {
        const auto size = count(depth);
        if (!size)
            return std::nullopt;
        PropertyList::Dictionary read;
        for (std::uint32_t i = 0; i < *size; ++i) {
            auto key = text();
            if (!key || (!read.empty() && *key <= read.rbegin()->first))
                return std::nullopt;
            auto each = value(depth + 1);
            if (!each)
                return std::nullopt;
            read.emplace_hint(read.end(), std::move(*key), std::move(*each));
        }
        return read;
    }

private:
    std::optional<PropertyList> value(std::size_t depth) {
        const auto tag = integer<std::uint8_t>();
        if (!tag || ++values_ > maxWireValues)
            return std::nullopt;
        switch (static_cast<Tag>(*tag)) {
        case Tag::boolean:
            return boxed(flag());
        case Tag::integer:
            return fromBits([](std::uint64_t bits) { return static_cast<std::int64_t>(bits); });
        case Tag::unsignedInteger:
            return unsignedInteger();
        case Tag::real:
            return fromBits([](std::uint64_t bits) { return std::bit_cast<double>(bits); });
        case Tag::text:
            return boxed(text());
        case Tag::date:
            return fromBits([](std::uint64_t bits) {
                const Nanoseconds sinceEpoch(static_cast<std::int64_t>(bits));
                return Date(std::chrono::duration_cast<Date::duration>(sinceEpoch));
            });
        case Tag::data: {
            const auto read = bytes();
            return read ? std::optional<PropertyList>(Data(read->begin(), read->end()))
                        : std::nullopt;
        }
        case Tag::array:
            return boxed(array(depth));
        case Tag::dictionary:
            return boxed(dictionary(depth));
        }
        return std::nullopt;
    }

    /// One that fits among the signed is sent as such.
    std::optional<PropertyList> unsignedInteger() {
        const auto bits = integer<std::uint64_t>();
        if (!bits || !NSNumber(*bits).isUnsigned())
            return std::nullopt;
        return NSNumber(*bits);
    }

    std::optional<PropertyList::Array> array(std::size_t depth) {
        const auto size = count(depth);
        if (!size)
            return std::nullopt;
        PropertyList::Array read;
        for (std::uint32_t i = 0; i < *size; ++i) {
            auto item = value(depth + 1);
            if (!item)
                return std::nullopt;
            read.push_back(std::move(*item));
        }
        return read;
    }

    template <class T>
    static std::optional<PropertyList> boxed(std::optional<T> value) {
        return value ? std::optional<PropertyList>(std::move(*value)) : std::nullopt;
    }

    template <class Convert>
    std::optional<PropertyList> fromBits(Convert convert) {
        const auto bits = integer<std::uint64_t>();
        return bits ? std::optional<PropertyList>(convert(*bits)) : std::nullopt;
    }

    std::optional<std::uint32_t> count(std::size_t depth) {
        if (depth >= maxWireDepth)
            return std::nullopt;
        return integer<std::uint32_t>();
    }

    std::optional<std::span<const std::byte>> bytes() {
        const auto size = integer<std::uint32_t>();
        if (!size || *size > rest_.size())
            return std::nullopt;
        const auto read = rest_.first(*size);
        rest_ = rest_.subspan(*size);
        return read;
    }

    std::span<const std::byte> rest_;
    std::size_t values_ = 0;
};

bool isName(std::string_view text) {
    return !text.empty() && text.find('\0') == std::string_view::npos;
}

} // namespace

Data encode(const WireNotification& notification) {
    if (!isName(notification.name))
        throw std::invalid_argument("A notification name is empty or holds a NUL.");
    Writer writer;
    writer.integer(version);
    writer.text(notification.name);
    writer.flag(notification.object.has_value());
    if (notification.object)
        writer.text(*notification.object);
    writer.flag(notification.userInfo.has_value());
    if (notification.userInfo)
        writer.dictionary(*notification.userInfo, 0);
    return writer.take();
}

std::optional<WireNotification> decodeNotification(std::span<const std::byte> bytes) {
    Reader reader(bytes);
    if (bytes.size() > maxWireSize || reader.integer<std::uint8_t>() != version)
        return std::nullopt;
    WireNotification read;
    auto name = reader.text();
    if (!name || !isName(*name))
        return std::nullopt;
    read.name = std::move(*name);
    const auto hasObject = reader.flag();
    if (!hasObject || (*hasObject && !(read.object = reader.text())))
        return std::nullopt;
    const auto hasUserInfo = reader.flag();
    if (!hasUserInfo || (*hasUserInfo && !(read.userInfo = reader.dictionary(0))))
        return std::nullopt;
    return reader.isAtEnd() ? std::optional(std::move(read)) : std::nullopt;
}

} // namespace zorvan::internal
