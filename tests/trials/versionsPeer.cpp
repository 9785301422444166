// What the trials of two versions run; built with each of them, and so of what both have. Stores
// numbers in settings and in secrets, each in one of six slots, the last of which it shares with
// the other version.
//
//   versions-peer FOLDER write NAME FIRST   stores FIRST and the numbers after it, until it is
//   killed. Tells
//                                           each as "settings NUMBER" when it is stored, else why
//                                           not, as "settings refused: WHY"
//   versions-peer FOLDER read NAME...       tells what there is, as "settings SLOT NAME NUMBER", or
//   "damaged"
//                                           or "refused STATUS" in the place of name and number

#include <zorvan/platform/security/SecItem.h>
#include <zorvan/platform/settingsdatabase/SettingsDatabase.h>

#include <chrono>
#include <cstdint>
#include <iostream>
#include <optional>
#include <sstream>
#include <string>
#include <string_view>
#include <thread>

using namespace zorvan;

namespace {

constexpr std::int64_t slotCount = 6;

std::string slotOf(const std::string& name, std::int64_t number) {
    const std::int64_t slot = number % slotCount;
    return slot == slotCount - 1 ? "shared" : name + '-' + std::to_string(slot);
}

/// Of many lengths.
std::string content(const std::string& name, std::int64_t number) {
    return name + ' ' + std::to_string(number) + ' ' +
           std::string(static_cast<std::size_t>(number * 700 % 9'000), 'x');
}

/// The name and the number, if it is whole.
std::string described(const std::string& text) {
    std::istringstream words(text);
    std::string name;
    std::int64_t number = 0;
    words >> name >> number;
    return text == content(name, number) ? name + ' ' + std::to_string(number) : "damaged";
}

// Settings.

std::string storeSetting(SettingsDatabase& settings, const std::string& slot,
                         const std::string& text) {
    if (settings.set(slot, text))
        return "";
    return settings.problem().value_or("no reason");
}

std::optional<std::string> setting(SettingsDatabase& settings, const std::string& slot) {
    const auto value = settings.value(slot);
    const std::string* const text = value ? value->as<std::string>() : nullptr;
    return text ? std::optional(described(*text)) : std::nullopt;
}

// Secrets.

PropertyList::Dictionary item(const std::string& slot) {
    return {{kSecClass, kSecClassGenericPassword}, {kSecAttrAccount, slot}};
}

std::string storeSecret(const std::string& slot, const std::string& text) {
    const auto* const bytes = reinterpret_cast<const std::byte*>(text.data());
    const Data value(bytes, bytes + text.size());
    PropertyList::Dictionary added = item(slot);
    added.insert_or_assign(kSecValueData, value);
    OSStatus status = SecItemAdd(added);
    if (status == errSecDuplicateItem)
        status = SecItemUpdate(item(slot), {{kSecValueData, value}});
    return status == errSecSuccess ? "" : std::to_string(status);
}

std::optional<std::string> secret(const std::string& slot) {
    PropertyList::Dictionary query = item(slot);
    query.insert_or_assign(kSecReturnData, true);
    const SecItemResult found = SecItemCopyMatching(query);
    if (found.status == errSecItemNotFound)
        return std::nullopt;
    const Data* const data = found.value ? found.value->as<Data>() : nullptr;
    if (!data)
        return "refused " + std::to_string(found.status);
    return described({reinterpret_cast<const char*>(data->data()), data->size()});
}

void tellStored(const char* store, std::int64_t number, const std::string& problem) {
    std::cout << store << ' ' << (problem.empty() ? std::to_string(number) : "refused: " + problem)
              << std::endl;
    if (!problem.empty())
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
}

void tellFound(const char* store, const std::string& slot, const std::optional<std::string>& what) {
    if (what)
        std::cout << store << ' ' << slot << ' ' << *what << std::endl;
}

} // namespace

int main(int count, char** words) {
    const std::string folder = words[1];
    const auto settings = SettingsDatabase::open(folder + "/a.settings");
    if (std::string_view(words[2]) == "write") {
        const std::string name = words[3];
        for (std::int64_t number = std::stoll(words[4]);; ++number) {
            const std::string slot = slotOf(name, number), text = content(name, number);
            tellStored("settings", number, storeSetting(*settings, slot, text));
            tellStored("secrets", number, storeSecret(slot, text));
        }
    }
    for (int i = 3; i < count; ++i)
        for (std::int64_t number = 0; number < slotCount; ++number) {
            const std::string slot = slotOf(words[i], number);
            tellFound("settings", slot, setting(*settings, slot));
            tellFound("secrets", slot, secret(slot));
        }
}
