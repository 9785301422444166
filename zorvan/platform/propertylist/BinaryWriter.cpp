#include <zorvan/platform/foundation/internal/KeyedHash.h>
#include <zorvan/platform/foundation/internal/byteNumbers.h>
#include <zorvan/platform/propertylist/PropertyListFile.h>
#include <zorvan/platform/propertylist/internal/Codecs.h>
#include <zorvan/platform/propertylist/internal/TextForms.h>

#include <algorithm>
#include <bit>
#include <limits>
#include <optional>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace zorvan::propertylist {

namespace {

unsigned bytesFor(std::uint64_t number) {
    for (const unsigned size : {1u, 2u, 4u})
        if (number >> (8 * size) == 0)
            return size;
    return 8;
}

void appendNumber(Data& bytes, std::uint64_t number, unsigned size) {
    internal::appendNumber(bytes, number, size, std::endian::big);
}

/// Numbers the objects in a first pass, since the size of a reference depends on how many there
/// are, and writes them in the same order in a second. Equal texts share one object, for as long as
/// a reader unfolds as much.
class BinaryWriter {
public:
    explicit BinaryWriter(Identifiers identifiers) : identifiers_(identifiers) {}

    Data write(const PropertyList& root) {
        count(root, 0);
        textBudget_ = minimumTextBudget;
        referenceSize_ = bytesFor(objectCount_);
        bytes_.reserve(256);
        for (const char c : std::string_view(binaryMagic))
            bytes_.push_back(static_cast<std::byte>(c));
        writeObject(root);
        finish();
        return std::move(bytes_);
    }

private:
    // First pass.

    void count(const PropertyList& value, std::size_t depth) {
        if (const auto* text = value.as<std::string>()) {
            countText(*text);
            return;
        }
        ++objectCount_;
        const auto* array = value.as<PropertyList::Array>();
        const auto* dictionary = value.as<PropertyList::Dictionary>();
        if ((!array && !dictionary) || identifier(value))
            return;
        if (depth + 1 > maximumDepth)
            throw Refusal("the list is too deep");
        if (array)
            for (const PropertyList& item : *array)
                count(item, depth + 1);
        else
            for (const auto& [key, item] : *dictionary) {
                countText(key);
                count(item, depth + 1);
            }
    }

    std::optional<std::uint64_t> identifier(const PropertyList& value) const {
        return identifiers_ == Identifiers::admitted ? identifierIn(value) : std::nullopt;
    }

    void countText(const std::string& text) {
        const auto [place, isNew] = texts_.try_emplace(text, unwritten);
        met_.push_back(&place->second);
        if (isNew || !canShare(text))
            ++objectCount_;
    }

    /// Whether a text that stands in the list already may be referred to. Both passes ask in the
    /// same order, so that they decide alike.
    bool canShare(const std::string& text) {
        const std::size_t size = 2 * text.size(); // in UTF-16, at the most
        const std::size_t cost =
            size - std::min(size, textPerByte); // a reference is a byte or more
        if (cost > textBudget_)
            return false;
        textBudget_ -= cost;
        return true;
    }

    // Second pass. Each function returns the number of the object that it wrote.

    std::uint64_t begin() {
        offsets_.push_back(bytes_.size());
        return offsets_.size() - 1;
    }

    void marker(unsigned kind, unsigned detail) {
        bytes_.push_back(static_cast<std::byte>(kind << 4 | detail));
    }

    void markerWithLength(unsigned kind, std::size_t length) {
        if (length < 15) {
            marker(kind, static_cast<unsigned>(length));
            return;
        }
        marker(kind, 15);
        writeInteger(length);
    }

    void writeInteger(std::uint64_t number) {
        const unsigned size = bytesFor(number);
        marker(0x1, static_cast<unsigned>(std::countr_zero(size)));
        appendNumber(bytes_, number, size);
    }

    std::uint64_t writeObject(const PropertyList& value) {
        if (const auto* text = value.as<std::string>())
            return writeText(*text);
        if (const auto* array = value.as<PropertyList::Array>())
            return writeArray(*array);
        if (const auto number = identifier(value))
            return writeIdentifier(*number);
        if (const auto* dictionary = value.as<PropertyList::Dictionary>())
            return writeDictionary(*dictionary);

        const std::uint64_t object = begin();
        if (const auto* data = value.as<Data>()) {
            markerWithLength(0x4, data->size());
            bytes_.insert(bytes_.end(), data->begin(), data->end());
        } else if (const auto* date = value.as<Date>()) {
            marker(0x3, 3);
            appendNumber(bytes_, std::bit_cast<std::uint64_t>(secondsFromReference(*date)), 8);
        } else {
            writeNumber(*value.as<NSNumber>());
        }
        return object;
    }

    void writeNumber(const NSNumber& number) {
        if (number.isBool()) {
            marker(0x0, number.boolValue() ? 9 : 8);
        } else if (number.isUnsigned()) { // in eight bytes it would be taken for a negative one
            marker(0x1, 4);
            appendNumber(bytes_, 0, 8);
            appendNumber(bytes_, number.uint64Value(), 8);
        } else if (number.isInteger()) {
            writeInteger(static_cast<std::uint64_t>(number.int64Value()));
        } else {
            marker(0x2, 3);
            appendNumber(bytes_, std::bit_cast<std::uint64_t>(number.doubleValue()), 8);
        }
    }

    std::uint64_t writeIdentifier(std::uint64_t number) {
        const std::uint64_t object = begin();
        const unsigned size = bytesFor(number);
        marker(0x8, size - 1);
        appendNumber(bytes_, number, size);
        return object;
    }

    std::uint64_t writeText(const std::string& text) {
        std::uint64_t& object = *met_[written_++];
        if (object != unwritten && canShare(text))
            return object;
        object = begin();
        writeCharacters(text);
        return object;
    }

    void writeCharacters(std::string_view text) {
        std::u16string units;
        bool ascii = true;
        for (UTF8Reader reader(text); !reader.atEnd();) {
            const std::optional<char32_t> scalar = reader.next();
            if (!scalar)
                throw Refusal("a text is not UTF-8");
            ascii = ascii && *scalar < 0x80;
            if (*scalar >= 0x10000) {
                units += static_cast<char16_t>(0xD800 + ((*scalar - 0x10000) >> 10));
                units += static_cast<char16_t>(0xDC00 + (*scalar & 0x3FF));
            } else {
                units += static_cast<char16_t>(*scalar);
            }
        }
        markerWithLength(ascii ? 0x5 : 0x6, units.size());
        for (const char16_t unit : units)
            appendNumber(bytes_, unit, ascii ? 1 : 2);
    }

    /// Leaves room for the references of a container, which are known once its items are written.
    std::size_t reserve(std::size_t references) {
        const std::size_t at = bytes_.size();
        bytes_.resize(at + references * referenceSize_);
        return at;
    }

    void setReference(std::size_t at, std::size_t index, std::uint64_t object) {
        const auto place = std::span(bytes_).subspan(at + index * referenceSize_, referenceSize_);
        internal::putNumber(place, object, std::endian::big);
    }

    std::uint64_t writeArray(const PropertyList::Array& array) {
        const std::uint64_t object = begin();
        markerWithLength(0xA, array.size());
        const std::size_t at = reserve(array.size());
        for (std::size_t i = 0; i < array.size(); ++i)
            setReference(at, i, writeObject(array[i]));
        return object;
    }

    std::uint64_t writeDictionary(const PropertyList::Dictionary& dictionary) {
        const std::uint64_t object = begin();
        markerWithLength(0xD, dictionary.size());
        const std::size_t at = reserve(2 * dictionary.size());
        std::size_t index = 0;
        for (const auto& [key, item] : dictionary) {
            setReference(at, index, writeText(key));
            setReference(at, dictionary.size() + index, writeObject(item));
            ++index;
        }
        return object;
    }

    void finish() {
        const std::size_t table = bytes_.size();
        const unsigned offsetSize = bytesFor(table);
        for (const std::size_t offset : offsets_)
            appendNumber(bytes_, offset, offsetSize);
        appendNumber(bytes_, 0, 6);
        appendNumber(bytes_, offsetSize, 1);
        appendNumber(bytes_, referenceSize_, 1);
        appendNumber(bytes_, offsets_.size(), 8);
        appendNumber(bytes_, 0, 8); // the root is the first object
        appendNumber(bytes_, table, 8);
    }

    static constexpr std::uint64_t unwritten = std::numeric_limits<std::uint64_t>::max();

    Identifiers identifiers_;
    std::unordered_map<std::string_view, std::uint64_t, internal::KeyedHash>
        texts_;                       // their objects
    std::vector<std::uint64_t*> met_; // of each text in order, what the first pass found
    std::size_t written_ = 0;         // of these, by the second pass
    std::size_t textBudget_ = minimumTextBudget;
    std::uint64_t objectCount_ = 0;
    unsigned referenceSize_ = 1;
    std::vector<std::size_t> offsets_;
    Data bytes_;
};

} // namespace

std::optional<std::uint64_t> identifierIn(const PropertyList& value) {
    const auto* dictionary = value.as<PropertyList::Dictionary>();
    if (!dictionary || dictionary->size() != 1 || dictionary->begin()->first != identifierKey)
        return std::nullopt;
    const auto* number = dictionary->begin()->second.as<NSNumber>();
    if (!number || !number->isInteger() || number->int64Value() < 0)
        return std::nullopt;
    return static_cast<std::uint64_t>(number->int64Value());
}

Data writeBinary(const PropertyList& list, Identifiers identifiers) {
    return BinaryWriter(identifiers).write(list);
}

} // namespace zorvan::propertylist
