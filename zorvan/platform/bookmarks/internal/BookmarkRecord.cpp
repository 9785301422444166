#include <zorvan/platform/bookmarks/internal/BookmarkRecord.h>

#include <zorvan/platform/foundation/internal/byteNumbers.h>

#include <climits>
#include <string_view>

namespace zorvan::internal {

namespace {

constexpr std::string_view magic("zbmk\x01", 5);

void append(Data& bytes, std::uint64_t number, unsigned size) {
    appendNumber(bytes, number, size, std::endian::little);
}

/// Takes what there is; too little of it makes all that follows empty and `isWhole` false.
class Reader {
public:
    explicit Reader(std::span<const std::byte> bytes) : bytes_(bytes) {}
    bool isWhole() const { return isWhole_; }

    std::span<const std::byte> take(std::uint64_t size) {
        isWhole_ = isWhole_ && size <= bytes_.size();
        const auto taken = bytes_.first(isWhole_ ? static_cast<std::size_t>(size) : 0);
        bytes_ = bytes_.subspan(taken.size());
        return taken;
    }

    std::uint64_t number(unsigned size) { return numberOf(take(size), std::endian::little); }

    std::string text(std::uint64_t size) {
        const auto bytes = take(size);
        return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
    }

private:
    std::span<const std::byte> bytes_;
    bool isWhole_ = true;
};

} // namespace

Data BookmarkRecord::encoded() const {
    Data bytes;
    for (const char c : magic)
        bytes.push_back(static_cast<std::byte>(c));
    append(bytes, identity.device, 8);
    append(bytes, identity.inode, 8);
    append(bytes, static_cast<std::uint64_t>(identity.birth), 8);
    append(bytes, static_cast<std::uint32_t>(handle.type), 4);
    append(bytes, handle.bytes.size(), 2);
    bytes.insert(bytes.end(), handle.bytes.begin(), handle.bytes.end());
    append(bytes, path.size(), 4);
    const auto text = std::as_bytes(std::span(path));
    bytes.insert(bytes.end(), text.begin(), text.end());
    return bytes;
}

std::optional<BookmarkRecord> BookmarkRecord::decoded(std::span<const std::byte> bytes) {
    Reader reader(bytes);
    BookmarkRecord record;
    if (reader.text(magic.size()) != magic)
        return std::nullopt;
    record.identity.device = reader.number(8);
    record.identity.inode = reader.number(8);
    record.identity.birth = static_cast<std::int64_t>(reader.number(8));
    record.handle.type = static_cast<std::int32_t>(reader.number(4));
    const auto handle = reader.take(reader.number(2));
    record.handle.bytes.assign(handle.begin(), handle.end());
    record.path = reader.text(reader.number(4));
    const bool isPath = record.path.starts_with('/') && record.path.size() < PATH_MAX &&
                        record.path.find('\0') == std::string::npos;
    return reader.isWhole() && isPath ? std::optional(std::move(record)) : std::nullopt;
}

} // namespace zorvan::internal
