// A process of its own that uses the secure items as it is told on standard input, one command a
// line, and answers each with a line: a status, or for a value found the value.
//
//   add ACCOUNT VALUE
//   set ACCOUNT VALUE     adds or updates
//   get ACCOUNT
//   delete ACCOUNT
//   race ACCOUNT COUNT    adds ACCOUNT-0, ACCOUNT-1 ... and gives how many were not there yet

#include "storedItems.h"

#include <iostream>
#include <sstream>

using namespace zorvan;

namespace {

PropertyList::Dictionary item(const std::string& account) {
    return {{kSecClass, kSecClassGenericPassword},
            {kSecAttrService, "test"},
            {kSecAttrAccount, account}};
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
        return std::to_string(setValue(item(account), value));
    if (command == "get")
        return valueOf(item(account));
    if (command == "delete")
        return std::to_string(SecItemDelete(item(account)));
    if (command == "race")
        return std::to_string(race(account, std::stoi(value)));
    return "no such command";
}

} // namespace

int main() {
    for (std::string line; std::getline(std::cin, line);)
        std::cout << obey(line) << std::endl;
}
