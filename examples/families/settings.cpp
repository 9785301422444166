// Settings with types, and a secret.
// Link Zorvan::Settings, Zorvan::UserKeychain.

#include <zorvan/settings.h>

#include <iostream>

using namespace zorvan;

const EvaluedUserDefaultsKey<IntUDC> columns({.name = "Columns", .value = 4});
const EvaluedUserDefaultsKey<StringArrayUDC> recent({.name = "Recent",
                                                     .value = std::vector<std::string>()});

int main() {
    NSUserDefaults& store = *NSUserDefaults::standardUserDefaults();
    store[columns] += 2; // stored when this returns, also should the program be killed now
    store.modify(recent, [](auto& files) { files.push_back("lake.jpg"); }); // other processes wait
    std::cout << store[columns].value() << ' ' << store.value(recent).front() << '\n';

    const auto keychain = UserKeychain::createForProgram();
    const UserKeychain::Key password("imap.example.org");
    std::cout << keychain->set("hunter2", password) << ' ' << *keychain->string(password) << '\n';
}
