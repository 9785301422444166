// A theme of icons written by a stranger: the index, and the choice of the user, after a NUL each.

#include <fuzz/ScratchFolder.h>
#include <zorvan/platform/bundles/DesktopIcon.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <string_view>

namespace {

/// Where themes and the choice of one are looked for, with two themes that have an icon each.
const std::filesystem::path& folder() {
    static const ScratchFolder folder;
    static const bool isReady = [] {
        for (const char* variable :
             {"HOME", "XDG_DATA_HOME", "XDG_CONFIG_HOME", "XDG_DATA_DIRS", "XDG_CONFIG_DIRS"})
            ::setenv(variable, folder.path().c_str(), 1);
        for (const char* theme : {"one", "two"}) {
            std::filesystem::create_directories(folder.path() / "icons" / theme / "8");
            std::ofstream(folder.path() / "icons" / theme / "8/a.png") << "x";
        }
        return std::filesystem::create_directories(folder.path() / "gtk-4.0");
    }();
    (void)isReady;
    return folder.path();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::string_view input(reinterpret_cast<const char*>(data), size);
    for (const char* name :
         {"icons/one/index.theme", "icons/two/index.theme", "gtk-4.0/settings.ini"}) {
        const std::string_view part = input.substr(0, input.find('\0'));
        input.remove_prefix(std::min(part.size() + 1, input.size()));
        std::ofstream(folder() / name, std::ios::binary) << part;
    }
    for (const std::int64_t points : {1, 8, 65535}) {
        const auto icon = zorvan::desktop::iconNamed("a", points, points);
        // Nothing outside is ever given.
        if (icon && !icon->path().starts_with(folder().string()))
            std::abort();
    }
    return 0;
}
