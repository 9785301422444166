#pragma once

#include <zorvan/platform/foundation/PropertyList.h>

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace zorvan::internal {

// The bytes that stand for property-list values, on disks and between processes. Every number, date
// and byte of a text comes back as it was, and a value has one form only. A letter says the kind,
// then:
//
//     T F     truth values
//     u       integer above the largest signed one: 8 bytes, lowest first
//     i       any other integer: the same         d   date: nanoseconds since 1970, the same
//     r       real: its 8 bytes, lowest first
//     s b     text, data: length, bytes
//     a       array: count, values                o   dictionary: count, then length, key, value;
//                                                     the keys ascend
//
// Lengths and counts are in groups of seven bits, lowest first, the top bit set on all but the
// last.

/// What is asked of bytes beyond their form.
struct ValueBounds {
    std::size_t size;   // bytes
    std::size_t depth;  // arrays and dictionaries within each other
    std::size_t values; // those within others counted too
    bool isUTF8;        // texts and keys have to be
};

/// A value can have no bytes within the bounds.
enum class ValueRefusal { size, depth, values, notUTF8 };

/// Everything throws `ValueRefusal`.
class ValueWriter {
public:
    explicit ValueWriter(const ValueBounds& bounds) : bounds_(bounds) {}

    void write(const PropertyList& value);
    /// Without the letter.
    void write(const PropertyList::Dictionary& dictionary);
    /// Length and bytes.
    void writeText(std::string_view text);
    void writeByte(std::uint8_t byte);

    Data take() noexcept { return std::move(bytes_); }

private:
    void writeNumber(const NSNumber& number);
    void writeArray(const PropertyList::Array& array);
    void letter(char kind) { writeByte(static_cast<std::uint8_t>(kind)); }
    void writeEight(char kind, std::uint64_t bits);
    void writeCount(std::size_t count);
    void writeBytes(std::span<const std::byte> bytes);
    void enter();

    const ValueBounds bounds_;
    Data bytes_;
    std::size_t values_ = 0;
    std::size_t depth_ = 0;
};

/// Bytes that stand for nothing within the bounds.
struct ValueDamage {};

/// Safe on any bytes. Everything throws `ValueDamage`.
class ValueReader {
public:
    ValueReader(std::span<const std::byte> bytes, const ValueBounds& bounds);

    bool isAtEnd() const noexcept { return rest_.empty(); }

    PropertyList read();
    PropertyList::Dictionary readDictionary();
    std::string readText();
    std::uint8_t readByte() { return static_cast<std::uint8_t>(take(1)[0]); }

private:
    std::span<const std::byte> take(std::size_t size);
    std::uint64_t readEight();
    std::size_t readCount();
    NSNumber readUnsigned();
    Data readData();
    PropertyList::Array readArray();
    void enter();

    const ValueBounds bounds_;
    std::span<const std::byte> rest_;
    std::size_t values_ = 0;
    std::size_t depth_ = 0;
};

} // namespace zorvan::internal
