// What the trials of two versions run; built with each of them, and so of what both have. Stores
// numbers in settings and in secrets, each in one of six slots, the last of which it shares with
// the other version.
//
//   versions-peer FOLDER write NAME FIRST   stores FIRST and the numbers after it, until it is
//       killed. Tells each as "settings SLOT NUMBER" when it is stored, else why not, as
//       "settings SLOT refused: WHY"
//   versions-peer FOLDER read NAME...       tells what there is, as "settings SLOT NAME NUMBER", or
//       "damaged" or "refused STATUS" in the place of name and number

#include <zorvan/platform/security/SecItem.h>
#include <zorvan/platform/settingsdatabase/SettingsDatabase.h>

#include <chrono>
#include <cstdint>
#include <functional>
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

struct Store {
    const char* name;
    /// Why it is not stored; empty when it is.
    std::function<std::string(const std::string& slot, const std::string& text)> store;
    std::function<std::optional<std::string>(const std::string& slot)> found;
};

Store settingsIn(const std::string& folder) {
    const auto settings = SettingsDatabase::open(folder + "/a.settings");
    const auto store = [=](const std::string& slot, const std::string& text) {
        return settings->set(slot, text) ? "" : settings->problem().value_or("no reason");
    };
    const auto found = [=](const std::string& slot) {
        const auto value = settings->value(slot);
        const auto* const text = value ? value->as<std::string>() : nullptr;
        return text ? std::optional(described(*text)) : std::nullopt;
    };
    return {"settings", store, found};
}

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

std::optional<std::string> foundSecret(const std::string& slot) {
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

} // namespace

int main(int count, char** words) {
    const Store stores[] = {settingsIn(words[1]), {"secrets", storeSecret, foundSecret}};
    if (std::string_view(words[2]) == "write")
        for (std::int64_t number = std::stoll(words[4]);; ++number)
            for (const Store& store : stores) {
                const std::string name = words[3], slot = slotOf(name, number);
                const auto problem = store.store(slot, content(name, number));
                std::cout << store.name << ' ' << slot << ' '
                          << (problem.empty() ? std::to_string(number) : "refused: " + problem)
                          << std::endl;
                if (!problem.empty())
                    std::this_thread::sleep_for(std::chrono::milliseconds(5));
            }
    for (int i = 3; i < count; ++i)
        for (std::int64_t number = 0; number < slotCount; ++number)
            for (const Store& store : stores)
                if (const auto found = store.found(slotOf(words[i], number)))
                    std::cout << store.name << ' ' << slotOf(words[i], number) << ' ' << *found
                              << std::endl;
}
