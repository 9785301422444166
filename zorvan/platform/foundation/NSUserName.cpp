#include <zorvan/platform/foundation/NSUserName.h>

#include <cerrno>
#include <pwd.h>
#include <unistd.h>
#include <vector>

namespace zorvan {

std::string NSUserName() {
    constexpr std::size_t largest = 1 << 20;
    std::vector<char> buffer(1024);
    for (;;) {
        passwd entry{};
        passwd* found = nullptr;
        const int error = getpwuid_r(geteuid(), &entry, buffer.data(), buffer.size(), &found);
        if (error != ERANGE || buffer.size() >= largest)
            return error == 0 && found ? found->pw_name : "";
        buffer.resize(buffer.size() * 2);
    }
}

} // namespace zorvan
