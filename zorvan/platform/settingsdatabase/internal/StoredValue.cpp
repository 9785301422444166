#include <zorvan/platform/settingsdatabase/internal/StoredValue.h>

#include <bit>
#include <chrono>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

namespace zorvan::internal {

namespace {

using Nanoseconds = std::chrono::nanoseconds;

class Writer {
public:
    Data take() { return std::move(bytes_); }

    void write(const PropertyList& value, std::size_t depth) {
        if (const auto* number = value.as<NSNumber>())
            writeNumber(*number);
        else if (const auto* text = value.as<std::string>())
            writeBytes('s', *text);
        else if (const auto* date = value.as<Date>())
            writeEight(
                'd',
                static_cast<std::uint64_t>(
                    std::chrono::duration_cast<Nanoseconds>(date->time_since_epoch()).count()));
        else if (const auto* data = value.as<Data>())
            writeBytes('b', {reinterpret_cast<const char*>(data->data()), data->size()});
        else
            writeContainer(value, depth + 1);
    }

private:
    void letter(char kind) { bytes_.push_back(static_cast<std::byte>(kind)); }

    void writeNumber(const NSNumber& number) {
        if (number.isBool())
            letter(number.boolValue() ? 'T' : 'F');
        else if (number.isUnsigned())
            writeEight('u', number.uint64Value());
        else if (number.isInteger())
            writeEight('i', static_cast<std::uint64_t>(number.int64Value()));
        else
            writeEight('r', std::bit_cast<std::uint64_t>(number.doubleValue()));
    }

    void writeEight(char kind, std::uint64_t bits) {
        letter(kind);
        for (unsigned i = 0; i < 8; ++i)
            bytes_.push_back(static_cast<std::byte>(bits >> (8 * i)));
    }

    void writeCount(std::size_t count) {
        for (; count >= 0x80; count >>= 7)
            bytes_.push_back(static_cast<std::byte>(count | 0x80));
        bytes_.push_back(static_cast<std::byte>(count));
    }

    void writeText(std::string_view text) {
        if (text.size() > maximumStoredSize - std::min(bytes_.size(), maximumStoredSize))
            throw UnstorableValue("the value is larger than 256 MiB");
        writeCount(text.size());
        const auto bytes = std::as_bytes(std::span(text));
        bytes_.insert(bytes_.end(), bytes.begin(), bytes.end());
    }

    void writeBytes(char kind, std::string_view bytes) {
        letter(kind);
        writeText(bytes);
    }

    void writeContainer(const PropertyList& value, std::size_t depth) {
        if (depth > maximumStoredDepth)
            throw UnstorableValue("the value is too deep");
        if (bytes_.size() > maximumStoredSize)
            throw UnstorableValue("the value is larger than 256 MiB");
        if (const auto* array = value.as<PropertyList::Array>()) {
            letter('a');
            writeCount(array->size());
            for (const PropertyList& item : *array)
                write(item, depth);
            return;
        }
        const auto& dictionary = *value.as<PropertyList::Dictionary>();
        letter('o');
        writeCount(dictionary.size());
        for (const auto& [key, item] : dictionary) {
            writeText(key);
            write(item, depth);
        }
    }

    Data bytes_;
};

struct Damage {};

class Reader {
public:
    explicit Reader(std::span<const std::byte> bytes) : bytes_(bytes) {}

    bool atEnd() const { return bytes_.empty(); }

    PropertyList read(std::size_t depth) {
        switch (static_cast<char>(take(1)[0])) {
        case 'T':
            return true;
        case 'F':
            return false;
        case 'i':
            return static_cast<std::int64_t>(eight());
        case 'u':
            return NSNumber(eight());
        case 'r':
            return std::bit_cast<double>(eight());
        case 'd':
            return Date(std::chrono::duration_cast<Date::duration>(
                Nanoseconds(static_cast<std::int64_t>(eight()))));
        case 's':
            return text();
        case 'b': {
            const auto bytes = take(count());
            return Data(bytes.begin(), bytes.end());
        }
        case 'a':
            return array(depth + 1);
        case 'o':
            return dictionary(depth + 1);
        default:
            throw Damage();
        }
    }

private:
    std::span<const std::byte> take(std::size_t size) {
        if (size > bytes_.size())
            throw Damage();
        const auto taken = bytes_.first(size);
        bytes_ = bytes_.subspan(size);
        return taken;
    }

    std::uint64_t eight() {
        std::uint64_t bits = 0;
        const auto bytes = take(8);
        for (unsigned i = 0; i < 8; ++i)
            bits |= static_cast<std::uint64_t>(bytes[i]) << (8 * i);
        return bits;
    }

    /// Never more than the bytes that are left, as whatever is counted has one at least.
    std::size_t count() {
        std::size_t number = 0;
        for (unsigned shift = 0; shift < 63; shift += 7) {
            const auto group = static_cast<std::size_t>(take(1)[0]);
            number |= (group & 0x7F) << shift;
            if (group >= 0x80)
                continue;
            if (number > bytes_.size())
                throw Damage();
            return number;
        }
        throw Damage();
    }

    std::string text() {
        const auto bytes = take(count());
        return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
    }

    PropertyList array(std::size_t depth) {
        if (depth > maximumStoredDepth)
            throw Damage();
        PropertyList::Array items;
        for (std::size_t left = count(); left > 0; --left)
            items.push_back(read(depth));
        return items;
    }

    PropertyList dictionary(std::size_t depth) {
        if (depth > maximumStoredDepth)
            throw Damage();
        PropertyList::Dictionary entries;
        for (std::size_t left = count(); left > 0; --left) {
            std::string key = text();
            entries.insert_or_assign(std::move(key), read(depth));
        }
        return entries;
    }

    std::span<const std::byte> bytes_;
};

} // namespace

Data encodeStored(const PropertyList& value) {
    Writer writer;
    writer.write(value, 0);
    Data bytes = writer.take();
    if (bytes.size() > maximumStoredSize)
        throw UnstorableValue("the value is larger than 256 MiB");
    return bytes;
}

std::optional<PropertyList> decodeStored(std::span<const std::byte> bytes) {
    try {
        Reader reader(bytes);
        PropertyList value = reader.read(0);
        return reader.atEnd() ? std::optional(std::move(value)) : std::nullopt;
    } catch (const Damage&) {
        return std::nullopt;
    }
}

} // namespace zorvan::internal
