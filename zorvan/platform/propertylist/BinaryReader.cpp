#include <zorvan/platform/foundation/internal/byteNumbers.h>
#include <zorvan/platform/propertylist/PropertyListFile.h>
#include <zorvan/platform/propertylist/internal/Codecs.h>
#include <zorvan/platform/propertylist/internal/TextForms.h>

#include <bit>
#include <string>

namespace zorvan::propertylist {

namespace {

using Bytes = std::span<const std::byte>;

constexpr std::size_t magicSize = sizeof binaryMagic - 1;
constexpr std::size_t trailerSize = 32;

std::uint64_t number(Bytes bytes) { return internal::numberOf(bytes, std::endian::big); }

/// The layout: the magic, the objects, the table of their offsets, and a trailer that says where
/// the table is. A container holds the numbers of its objects in that table.
class BinaryReader {
public:
    BinaryReader(Bytes bytes, Identifiers identifiers) : bytes_(bytes), identifiers_(identifiers) {
        if (bytes.size() < magicSize + trailerSize)
            throw Refusal("the file is cut short");
        const Bytes trailer = bytes.last(trailerSize);
        offsetSize_ = number(trailer.subspan(6, 1));
        referenceSize_ = number(trailer.subspan(7, 1));
        objectCount_ = number(trailer.subspan(8, 8));
        root_ = number(trailer.subspan(16, 8));
        table_ = number(trailer.subspan(24, 8));
        const std::size_t end = bytes.size() - trailerSize;
        const auto isSize = [](std::size_t size) { return size >= 1 && size <= 8; };
        if (!isSize(offsetSize_) || !isSize(referenceSize_) || table_ < magicSize || table_ > end ||
            objectCount_ > (end - table_) / offsetSize_)
            throw Refusal("the table of objects is damaged");
        objectBudget_ = bytes.size() * 2;
        textBudget_ = bytes.size() * textPerByte + minimumTextBudget;
    }

    PropertyList root() { return object(root_, 0); }

private:
    /// What an object begins with: its kind, and where its content starts.
    struct Head {
        unsigned kind;
        unsigned detail;
        std::size_t content;
    };

    Head headAt(std::uint64_t reference) const {
        if (reference >= objectCount_)
            throw Refusal("an object is missing");
        const std::size_t at = number(bytes_.subspan(
            table_ + static_cast<std::size_t>(reference) * offsetSize_, offsetSize_));
        if (at < magicSize || at >= table_)
            throw Refusal("an object lies outside the file");
        const auto marker = std::to_integer<unsigned>(bytes_[at]);
        return {marker >> 4, marker & 15, at + 1};
    }

    /// `count` items of `size` bytes each.
    Bytes content(std::size_t at, std::size_t count, std::size_t size) const {
        if (at > table_ || count > (table_ - at) / size)
            throw Refusal("an object is cut short");
        return bytes_.subspan(at, count * size);
    }

    static void spend(std::size_t& budget, std::size_t amount) {
        if (amount > budget)
            throw Refusal("the list unfolds to far more than its size");
        budget -= amount;
    }

    /// The length of a container or text: small ones are in the marker, others follow as an
    /// integer.
    std::size_t length(Head& head) const {
        if (head.detail != 15)
            return head.detail;
        const auto marker = std::to_integer<unsigned>(content(head.content, 1, 1)[0]);
        if (marker >> 4 != 1 || (marker & 15) > 3)
            throw Refusal("a length is damaged");
        const std::size_t size = std::size_t{1} << (marker & 15);
        const Bytes digits = content(head.content + 1, 1, size);
        head.content += 1 + size;
        return static_cast<std::size_t>(number(digits));
    }

    std::uint64_t reference(Bytes references, std::size_t index) const {
        return number(references.subspan(index * referenceSize_, referenceSize_));
    }

    PropertyList object(std::uint64_t reference, std::size_t depth) {
        Head head = headAt(reference);
        switch (head.kind) {
        case 0x0:
            return simple(head);
        case 0x1:
            return integer(head);
        case 0x2:
            return real(head);
        case 0x3:
            return date(head);
        case 0x4: {
            const Bytes raw = text(head, 1);
            return Data(raw.begin(), raw.end());
        }
        case 0x5:
            return utf8(head);
        case 0x6:
            return utf16(head);
        case 0x8:
            return identifier(head);
        case 0xA:
            return array(head, depth + 1);
        case 0xD:
            return dictionary(head, depth + 1);
        default:
            throw Refusal("an object is of a kind that property lists do not have");
        }
    }

    static PropertyList simple(const Head& head) {
        if (head.detail != 8 && head.detail != 9)
            throw Refusal("an object is of a kind that property lists do not have");
        return head.detail == 9;
    }

    PropertyList integer(const Head& head) const {
        if (head.detail > 4)
            throw Refusal("an integer does not fit 64 bits");
        const std::size_t size = std::size_t{1} << head.detail;
        const Bytes digits = content(head.content, 1, size);
        if (size < 8)
            return static_cast<std::int64_t>(number(digits)); // the short ones have no sign
        const std::uint64_t above = number(digits.first(size - 8));
        const std::uint64_t bits = number(digits.last(8));
        if (size == 16 && above == 0)
            return bits;
        const auto value = static_cast<std::int64_t>(bits);
        if (size == 16 && (above != ~std::uint64_t{0} || value >= 0))
            throw Refusal("an integer does not fit 64 bits");
        return value;
    }

    PropertyList real(const Head& head) const {
        if (head.detail == 2)
            return std::bit_cast<float>(
                static_cast<std::uint32_t>(number(content(head.content, 1, 4))));
        if (head.detail == 3)
            return std::bit_cast<double>(number(content(head.content, 1, 8)));
        throw Refusal("a real is of no known size");
    }

    PropertyList date(const Head& head) const {
        if (head.detail != 3)
            throw Refusal("a date is of no known size");
        const std::optional<Date> date =
            dateFromReference(std::bit_cast<double>(number(content(head.content, 1, 8))));
        if (!date)
            throw Refusal("a date is no number");
        return *date;
    }

    Bytes text(Head& head, std::size_t unit) {
        const std::size_t count = length(head);
        const Bytes raw = content(head.content, count, unit);
        spend(textBudget_, raw.size());
        return raw;
    }

    std::string utf8(Head& head) {
        const Bytes raw = text(head, 1);
        std::string characters(reinterpret_cast<const char*>(raw.data()), raw.size());
        if (!isUTF8(characters))
            throw Refusal("a text is damaged");
        return characters;
    }

    std::string utf16(Head& head) {
        const Bytes raw = text(head, 2);
        return internal::utf8FromUTF16(raw.size() / 2, [&](std::size_t i) {
            return static_cast<char32_t>(number(raw.subspan(2 * i, 2)));
        });
    }

    PropertyList identifier(const Head& head) const {
        if (identifiers_ == Identifiers::refused || head.detail > 7)
            throw Refusal("an object is of a kind that property lists do not have");
        const auto value =
            static_cast<std::int64_t>(number(content(head.content, 1, head.detail + 1)));
        return PropertyList::Dictionary{{identifierKey, value}};
    }

    PropertyList array(Head& head, std::size_t depth) {
        const Bytes references = container(head, 1, depth);
        PropertyList::Array values;
        values.reserve(references.size() / referenceSize_);
        for (std::size_t i = 0; i < references.size() / referenceSize_; ++i)
            values.push_back(object(reference(references, i), depth));
        return values;
    }

    PropertyList dictionary(Head& head, std::size_t depth) {
        const Bytes references = container(head, 2, depth);
        const std::size_t count = references.size() / referenceSize_ / 2;
        PropertyList::Dictionary values;
        for (std::size_t i = 0; i < count; ++i)
            values.insert_or_assign(key(reference(references, i)),
                                    object(reference(references, count + i), depth));
        return values;
    }

    std::string key(std::uint64_t reference) {
        Head head = headAt(reference);
        if (head.kind == 0x5)
            return utf8(head);
        if (head.kind == 0x6)
            return utf16(head);
        throw Refusal("a key is no text");
    }

    /// The references of a container that has `width` of them for each of its items.
    Bytes container(Head& head, std::size_t width, std::size_t depth) {
        if (depth > maximumDepth)
            throw Refusal("the list is too deep");
        const std::size_t count = length(head);
        const Bytes references = content(head.content, count, width * referenceSize_);
        // Paid ahead, so that no memory is taken for what would be refused in the end.
        spend(objectBudget_, count * width);
        return references;
    }

    Bytes bytes_;
    Identifiers identifiers_;
    std::size_t offsetSize_;
    std::size_t referenceSize_;
    std::uint64_t objectCount_;
    std::uint64_t root_;
    std::size_t table_;
    std::size_t objectBudget_;
    std::size_t textBudget_;
};

} // namespace

PropertyList readBinary(Bytes bytes, Identifiers identifiers) {
    return BinaryReader(bytes, identifiers).root();
}

} // namespace zorvan::propertylist
