#pragma once

#include <zorvan/platform/security/SecItem.h>
#include <zorvan/platform/security/internal/SealingKey.h>

#include <array>
#include <cstdint>
#include <iterator>
#include <optional>
#include <string>

namespace zorvan::security {

/// The attributes that are texts or bytes, and the columns that hold them.
struct TextColumn {
    const char* key;
    const char* column;
};
inline constexpr TextColumn textColumns[] = {
    {kSecAttrService, "service"},          {kSecAttrAccount, "account"},
    {kSecAttrAccessGroup, "access_group"}, {kSecAttrLabel, "label"},
    {kSecAttrGeneric, "generic"},          {kSecAttrAccessible, "accessible"},
};
enum TextIndex : std::size_t {
    serviceText,
    accountText,
    accessGroupText,
    labelText,
    genericText,
    accessibleText,
    textCount
};
static_assert(std::size(textColumns) == textCount);
/// The first ones identify an item, so that they are never absent in one.
inline constexpr std::size_t identifyingTexts = 3;

/// Values in the order of `textColumns`.
using Texts = std::array<std::optional<std::string>, textCount>;

/// An item as the database has it.
struct SecureItem {
    std::int64_t reference = 0; // random, above 0, never used again
    Texts texts;
    bool isSynchronizable = false;
    std::int64_t created = 0; // microseconds since 1970
    std::int64_t modified = 0;
    std::int64_t revision = 0;        // above that of every earlier writing of the same item
    std::optional<KeyIdentifier> key; // which sealed the value; absent when that is damaged
    Data sealed;
};

/// Everything about an item but its value: what the value is bound to. It must name its key.
Data associatedData(const SecureItem& item);

Data persistentReference(std::int64_t reference);
/// Absent when the bytes are none.
std::optional<std::int64_t> referenceIn(const Data& persistentReference);

} // namespace zorvan::security
