#include <zorvan/platform/foundation/internal/ValueBytes.h>

#include <zorvan/platform/foundation/internal/UTF8.h>
#include <zorvan/platform/foundation/internal/byteNumbers.h>

#include <bit>
#include <chrono>
#include <utility>

namespace zorvan::internal {

namespace {

std::uint64_t bitsOf(Date date) {
    return static_cast<std::uint64_t>(date.time_since_epoch() / std::chrono::nanoseconds(1));
}

Date dateOf(std::uint64_t bits) {
    const std::chrono::nanoseconds sinceEpoch(static_cast<std::int64_t>(bits));
    return Date(std::chrono::duration_cast<Date::duration>(sinceEpoch));
}

} // namespace

void ValueWriter::write(const PropertyList& value) {
    if (++values_ > bounds_.values)
        throw ValueRefusal::values;
    if (const auto* number = value.as<NSNumber>()) {
        writeNumber(*number);
    } else if (const auto* text = value.as<std::string>()) {
        letter('s');
        writeText(*text);
    } else if (const auto* date = value.as<Date>()) {
        writeEight('d', bitsOf(*date));
    } else if (const auto* data = value.as<Data>()) {
        letter('b');
        writeBytes(*data);
    } else if (const auto* array = value.as<PropertyList::Array>()) {
        letter('a');
        writeArray(*array);
    } else {
        letter('o');
        write(*value.as<PropertyList::Dictionary>());
    }
}

void ValueWriter::writeNumber(const NSNumber& number) {
    if (number.isBool())
        letter(number.boolValue() ? 'T' : 'F');
    else if (number.isUnsigned())
        writeEight('u', number.uint64Value());
    else if (number.isInteger())
        writeEight('i', static_cast<std::uint64_t>(number.int64Value()));
    else
        writeEight('r', std::bit_cast<std::uint64_t>(number.doubleValue()));
}

void ValueWriter::writeArray(const PropertyList::Array& array) {
    enter();
    writeCount(array.size());
    for (const PropertyList& item : array)
        write(item);
    --depth_;
}

void ValueWriter::write(const PropertyList::Dictionary& dictionary) {
    enter();
    writeCount(dictionary.size());
    for (const auto& [key, item] : dictionary) {
        writeText(key);
        write(item);
    }
    --depth_;
}

void ValueWriter::enter() {
    if (++depth_ > bounds_.depth)
        throw ValueRefusal::depth;
}

void ValueWriter::writeText(std::string_view text) {
    if (bounds_.isUTF8 && !isUTF8(text))
        throw ValueRefusal::notUTF8;
    writeBytes(std::as_bytes(std::span(text)));
}

void ValueWriter::writeBytes(std::span<const std::byte> bytes) {
    writeCount(bytes.size());
    if (bytes.size() > bounds_.size - bytes_.size())
        throw ValueRefusal::size;
    bytes_.insert(bytes_.end(), bytes.begin(), bytes.end());
}

void ValueWriter::writeByte(std::uint8_t byte) {
    if (bytes_.size() == bounds_.size)
        throw ValueRefusal::size;
    bytes_.push_back(std::byte{byte});
}

void ValueWriter::writeEight(char kind, std::uint64_t bits) {
    letter(kind);
    for (unsigned i = 0; i < 8; ++i)
        writeByte(static_cast<std::uint8_t>(bits >> (8 * i)));
}

void ValueWriter::writeCount(std::size_t count) {
    for (; count >= 0x80; count >>= 7)
        writeByte(static_cast<std::uint8_t>(count | 0x80));
    writeByte(static_cast<std::uint8_t>(count));
}

ValueReader::ValueReader(std::span<const std::byte> bytes, const ValueBounds& bounds)
    : bounds_(bounds), rest_(bytes) {
    if (bytes.size() > bounds.size)
        throw ValueDamage();
}

PropertyList ValueReader::read() {
    if (++values_ > bounds_.values)
        throw ValueDamage();
    switch (static_cast<char>(readByte())) {
    case 'T':
        return true;
    case 'F':
        return false;
    case 'i':
        return static_cast<std::int64_t>(readEight());
    case 'u':
        return readUnsigned();
    case 'r':
        return std::bit_cast<double>(readEight());
    case 'd':
        return dateOf(readEight());
    case 's':
        return readText();
    case 'b':
        return readData();
    case 'a':
        return readArray();
    case 'o':
        return readDictionary();
    default:
        throw ValueDamage();
    }
}

NSNumber ValueReader::readUnsigned() {
    const NSNumber number(readEight());
    if (!number.isUnsigned()) // is written as a signed one
        throw ValueDamage();
    return number;
}

Data ValueReader::readData() {
    const auto bytes = take(readCount());
    return Data(bytes.begin(), bytes.end());
}

PropertyList::Array ValueReader::readArray() {
    enter();
    PropertyList::Array items;
    for (std::size_t left = readCount(); left > 0; --left)
        items.push_back(read());
    --depth_;
    return items;
}

PropertyList::Dictionary ValueReader::readDictionary() {
    enter();
    PropertyList::Dictionary entries;
    for (std::size_t left = readCount(); left > 0; --left) {
        std::string key = readText();
        if (!entries.empty() && key <= entries.rbegin()->first)
            throw ValueDamage();
        entries.emplace_hint(entries.end(), std::move(key), read());
    }
    --depth_;
    return entries;
}

void ValueReader::enter() {
    if (++depth_ > bounds_.depth)
        throw ValueDamage();
}

std::string ValueReader::readText() {
    const auto bytes = take(readCount());
    std::string text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    if (bounds_.isUTF8 && !isUTF8(text))
        throw ValueDamage();
    return text;
}

std::span<const std::byte> ValueReader::take(std::size_t size) {
    if (size > rest_.size())
        throw ValueDamage();
    const auto taken = rest_.first(size);
    rest_ = rest_.subspan(size);
    return taken;
}

std::uint64_t ValueReader::readEight() { return numberOf(take(8), std::endian::little); }

/// Never more than the bytes that are left, as whatever is counted has one at least.
std::size_t ValueReader::readCount() {
    std::size_t number = 0;
    for (unsigned shift = 0; shift < 63; shift += 7) {
        const std::size_t group = readByte();
        number |= (group & 0x7F) << shift;
        if (group >= 0x80)
            continue;
        if (number > rest_.size() ||
            (group == 0 && shift > 0)) // a shorter form stands for the same
            throw ValueDamage();
        return number;
    }
    throw ValueDamage();
}

} // namespace zorvan::internal
