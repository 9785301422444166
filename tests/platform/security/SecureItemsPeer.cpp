// A process of its own that uses the secure items as it is told on standard input, one command a
// line, and answers each with a line: a status, or for a value found the value.
//
//   add ACCOUNT VALUE
//   set ACCOUNT VALUE     adds or updates
//   get ACCOUNT
//   delete ACCOUNT
//   ref ACCOUNT           a persistent reference, as digits
//   get-ref DIGITS        its value
//   race ACCOUNT COUNT    adds ACCOUNT-0, ACCOUNT-1 ... and gives how many were not there yet

#include <zorvan/platform/security/SecItem.h>

#include <iostream>
#include <span>
#include <sstream>
#include <string>
#include <tests/bytesOf.h>

using namespace zorvan;

namespace {

PropertyList::Dictionary item(const std::string& account) {
    return {{kSecClass, kSecClassGenericPassword},
            {kSecAttrService, "test"},
            {kSecAttrAccount, account}};
}

PropertyList::Dictionary with(PropertyList::Dictionary query, const char* key, PropertyList value) {
    query.insert_or_assign(key, std::move(value));
    return query;
}

OSStatus set(const std::string& account, const std::string& value) {
    const OSStatus status = SecItemAdd(with(item(account), kSecValueData, bytesOf(value)));
    if (status != errSecDuplicateItem)
        return status;
    return SecItemUpdate(item(account), {{kSecValueData, bytesOf(value)}});
}

std::string answer(const SecItemResult& found, bool asDigits = false) {
    if (found.status != errSecSuccess)
        return std::to_string(found.status);
    std::ostringstream text;
    for (const std::byte byte : *found.value->as<Data>())
        if (asDigits)
            text << std::to_integer<int>(byte) << ',';
        else
            text << std::to_integer<char>(byte);
    return text.str();
}

std::string referred(const std::string& digits) {
    Data reference;
    std::istringstream text(digits);
    for (std::string number; std::getline(text, number, ',');)
        reference.push_back(static_cast<std::byte>(std::stoi(number)));
    return answer(
        SecItemCopyMatching({{kSecValuePersistentRef, reference}, {kSecReturnData, true}}));
}

int race(const std::string& account, int count) {
    int added = 0;
    for (int i = 0; i < count; ++i)
        added += SecItemAdd(item(account + '-' + std::to_string(i))) == errSecSuccess;
    return added;
}

std::string obey(const std::string& line) {
    std::istringstream words(line);
    std::string command;
    std::string account;
    std::string value;
    words >> command >> account >> value;
    if (command == "add")
        return std::to_string(SecItemAdd(with(item(account), kSecValueData, bytesOf(value))));
    if (command == "set")
        return std::to_string(set(account, value));
    if (command == "get")
        return answer(SecItemCopyMatching(with(item(account), kSecReturnData, true)));
    if (command == "delete")
        return std::to_string(SecItemDelete(item(account)));
    if (command == "ref")
        return answer(SecItemCopyMatching(with(item(account), kSecReturnPersistentRef, true)),
                      true);
    if (command == "get-ref")
        return referred(account);
    if (command == "race")
        return std::to_string(race(account, std::stoi(value)));
    return "no such command";
}

} // namespace

int main() {
    for (std::string line; std::getline(std::cin, line);)
        std::cout << obey(line) << std::endl;
}
