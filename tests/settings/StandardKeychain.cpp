// Says which service its standard keychain has; with an argument, uses it once more at its end.

#include <zorvan/settings/UserKeychain.h>

#include <iostream>

using zorvan::UserKeychain;

namespace {

/// Older than everything that the library makes, so that it ends after it.
struct Older {
    bool isLate = false;
    ~Older() {
        const bool isStored = isLate && UserKeychain::standard()->set(1, UserKeychain::Key("late"));
        if (isStored)
            std::cout << "late " << UserKeychain::Access::lookup().size() << std::endl;
    }
} older;

} // namespace

int main(int count, char**) {
    older.isLate = count > 1;
    std::cout << UserKeychain::standard()->serviceName() << std::endl;
}
