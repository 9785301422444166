// A theme of icons written by a stranger: the index, and the choice of the user, after a NUL each.

#include <fuzz/Fuzzing.h>
#include <fuzz/ScratchFolder.h>
#include <zorvan/platform/bundles/DesktopIcon.h>

#include <fstream>

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

void tryOut(std::span<const std::uint8_t> input) {
    std::string_view text = textOf(input);
    for (const char* name :
         {"icons/one/index.theme", "icons/two/index.theme", "gtk-4.0/settings.ini"})
        std::ofstream(folder() / name, std::ios::binary) << takePart(text);
    for (const std::int64_t points : {1, 8, 65535}) {
        const auto icon = zorvan::desktop::iconNamed("a", points, points);
        // Nothing outside is ever given.
        require(!icon || icon->path().starts_with(folder().string()));
    }
}
