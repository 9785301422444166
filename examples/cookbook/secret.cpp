// A password kept and read back
//
// Sealed on the disk; the key is in the keyring of the session, or in a file for the user alone.
//
// Link Zorvan::UserKeychain.

#include <zorvan/settings/UserKeychain.h>

#include <iostream>

using namespace zorvan;

int main() {
    const auto keychain = UserKeychain::create({.serviceName = "org.example.mail"});
    const UserKeychain::Key password("ada@example.org");
    if (!keychain->set("correct horse", password))
        return 1;

    std::optional<std::string> secret = keychain->string(password);
    std::cout << secret.value_or("nothing stored").size() << " characters\n";
    if (secret)
        wipe(*secret); // what was read out is yours to wipe

    keychain->remove(password);
    std::cout << (keychain->hasValue(password) ? "still there" : "forgotten") << '\n';
}
