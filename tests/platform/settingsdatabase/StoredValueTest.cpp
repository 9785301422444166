#include <tests/Testing.h>

#include <zorvan/platform/settingsdatabase/internal/SettingsMemory.h>
#include <zorvan/platform/settingsdatabase/internal/StoredValue.h>

#include <tests/bytesOf.h>

using namespace zorvan::internal;
using namespace std::string_literals;

namespace {

std::optional<PropertyList> decoded(std::string_view bytes) {
    return decodeStored(std::as_bytes(std::span(bytes)));
}

} // namespace

// What is on users' disks: these bytes must be read for ever.
TEST(StoredValue, HasTheseBytes) {
    struct {
        PropertyList value;
        std::string bytes;
    } table[] = {
        {true, "T"},
        {-2, "i\xFE\xFF\xFF\xFF\xFF\xFF\xFF\xFF"},
        {~std::uint64_t{0}, "u\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF"},
        {1.5, std::string("r\0\0\0\0\0\0\xF8\x3F", 9)},
        {Date(std::chrono::seconds(1)), std::string("d\x00\xCA\x9A\x3B\0\0\0\0", 9)},
        {"hi", "s\x02hi"},
        {std::string(200, 'x'), "s\xC8\x01" + std::string(200, 'x')},
        {Data{std::byte{7}}, "b\x01\x07"},
        {PropertyList::Array{true, "a"}, "a\x02Ts\x01"
                                         "a"},
        {PropertyList::Dictionary{{"k", false}, {"", true}}, std::string("o\x02\0T\x01kF", 7)},
    };
    for (const auto& row : table) {
        EXPECT_EQ(textOf(encodeStored(row.value)), row.bytes);
        const auto back = decoded(row.bytes);
        EXPECT_TRUE(back && isIdentical(*back, row.value));
        for (std::size_t size = 0; size < row.bytes.size(); ++size)
            EXPECT_FALSE(decoded(row.bytes.substr(0, size))) << "cut to " << size;
        EXPECT_FALSE(decoded(row.bytes + "T"));
    }
}

// One value, one form: who compares bytes compares values.
TEST(StoredValue, RefusesAnotherFormOfTheSame) {
    for (const std::string& bytes :
         {std::string("s\x82\0hi", 5),                             // a longer count
          std::string("u\x01\0\0\0\0\0\0\0", 9),                   // a signed integer
          std::string("o\x02\x01kF\0T", 7), "o\x02\x01kF\x01kT"s}) // keys out of order, and twice
        EXPECT_FALSE(decoded(bytes)) << bytes;
}

TEST(StoredValue, RefusesDepth) {
    PropertyList nested = 1;
    for (std::size_t i = 0; i < maximumStoredDepth; ++i)
        nested = PropertyList::Array{std::move(nested)};
    EXPECT_TRUE(decodeStored(encodeStored(nested)));
    nested = PropertyList::Array{std::move(nested)};
    EXPECT_THROW(encodeStored(nested), UnstorableValue);
    std::string bytes;
    for (int i = 0; i < 100'000; ++i)
        bytes += "a\x01";
    EXPECT_FALSE(decoded(bytes + "T"));
    EXPECT_FALSE(decoded("a\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF\x7FT")); // a count beyond the bytes
}
