#include <zorvan/platform/foundation/NSHomeDirectory.h>
#include <zorvan/platform/foundation/NSUserName.h>

#include <cerrno>
#include <cstdlib>
#include <pwd.h>
#include <unistd.h>
#include <vector>

namespace zorvan {

namespace {

/// A field of the user's entry in the user database; empty when there is none.
std::string userField(char* passwd::*field) {
    constexpr std::size_t largest = 1 << 20;
    std::vector<char> buffer(1024);
    for (;;) {
        passwd entry{};
        passwd* found = nullptr;
        const int error = getpwuid_r(geteuid(), &entry, buffer.data(), buffer.size(), &found);
        if (error != ERANGE || buffer.size() >= largest)
            return error == 0 && found ? found->*field : "";
        buffer.resize(buffer.size() * 2);
    }
}

} // namespace

std::string NSUserName() { return userField(&passwd::pw_name); }

std::string NSHomeDirectory() {
    const char* home = ::secure_getenv("HOME");
    if (home && home[0] == '/')
        return home;
    std::string known = userField(&passwd::pw_dir);
    return known.starts_with('/') ? known : "";
}

} // namespace zorvan
