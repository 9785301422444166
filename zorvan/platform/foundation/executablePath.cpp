#include <zorvan/platform/foundation/executablePath.h>

#include <filesystem>
#include <string_view>
#include <system_error>

namespace zorvan {

std::string executablePath() {
    constexpr const char* link = "/proc/self/exe";
    // What the kernel writes behind the path of a file that is gone.
    constexpr std::string_view goneMark = " (deleted)";
    std::error_code ignored;
    std::string path = std::filesystem::read_symlink(link, ignored).string();
    // An executable may be called so; then the link leads to the file of that name.
    if (path.ends_with(goneMark) && !std::filesystem::equivalent(link, path, ignored))
        path.erase(path.size() - goneMark.size());
    return path;
}

} // namespace zorvan
