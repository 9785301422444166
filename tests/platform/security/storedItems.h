#pragma once

#include <zorvan/platform/security/SecItem.h>

#include <tests/bytesOf.h>

#include <string>
#include <string_view>
#include <utility>

// Secure items as the tests, and the programs that they run, use them.

inline zorvan::PropertyList::Dictionary with(zorvan::PropertyList::Dictionary query,
                                             const char* key, zorvan::PropertyList value) {
    query.insert_or_assign(key, std::move(value));
    return query;
}

/// The value of the first item that matches, or the status as text.
inline std::string valueOf(const zorvan::PropertyList::Dictionary& query) {
    const auto found = SecItemCopyMatching(with(query, zorvan::kSecReturnData, true));
    return found.value ? textOf(*found.value->as<zorvan::Data>()) : std::to_string(found.status);
}

/// Adds the item, or gives it another value.
inline zorvan::OSStatus setValue(const zorvan::PropertyList::Dictionary& item,
                                 std::string_view value) {
    const zorvan::Data bytes = bytesOf(value);
    const auto status = SecItemAdd(with(item, zorvan::kSecValueData, bytes));
    return status == zorvan::errSecDuplicateItem
               ? SecItemUpdate(item, {{zorvan::kSecValueData, bytes}})
               : status;
}
