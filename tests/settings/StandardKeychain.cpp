// Says which service its standard keychain has.

#include <zorvan/settings/UserKeychain.h>

#include <iostream>

int main() { std::cout << zorvan::UserKeychain::standard()->serviceName() << std::endl; }
