#include "PictureFile.h"

#include "displayText.h"

#include <zorvan/files/URL.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <chrono>
#include <cstdio>
#include <ctime>
#include <sys/stat.h>

using namespace zorvan;

namespace {

std::string kindOf(const URL& url) {
    if (conforms(url, UTIType::movie()))
        return "Movies";
    std::string kind(url.pathExtension());
    std::transform(kind.begin(), kind.end(), kind.begin(),
                   [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
    if (kind == "JPG")
        return "JPEG";
    if (kind == "TIF")
        return "TIFF";
    return kind.empty() ? "Others" : forDisplay(kind);
}

} // namespace

PictureFile::Pointer lookAt(const ListedFile& file) {
    const std::size_t slash = file.name.rfind('/');
    const bool isAtTop = slash == std::string::npos;
    PictureFile seen{file.url, file.name, {}, {}, kindOf(file.url), {}};
    seen.title = forDisplay(isAtTop ? file.name : file.name.substr(slash + 1));
    seen.folder = isAtTop ? std::string() : forDisplay(file.name.substr(0, slash));
    struct stat facts {};
    if (::stat(file.url.path().c_str(), &facts) == 0) {
        seen.modified = Date(std::chrono::duration_cast<Date::duration>(
            std::chrono::seconds(facts.st_mtim.tv_sec) +
            std::chrono::nanoseconds(facts.st_mtim.tv_nsec)));
        seen.byteCount = facts.st_size;
    }
    return std::make_shared<const PictureFile>(std::move(seen));
}

std::string modifiedText(const PictureFile& file) {
    const std::time_t seconds = std::chrono::system_clock::to_time_t(
        std::chrono::floor<std::chrono::seconds>(file.modified));
    std::tm parts{};
    std::array<char, 64> text{};
    localtime_r(&seconds, &parts);
    std::strftime(text.data(), text.size(), "%Y-%m-%d %H:%M", &parts);
    return text.data();
}

std::string byteCountText(const PictureFile& file) {
    constexpr std::array units{"B", "kB", "MB", "GB", "TB"};
    std::int64_t tenths = file.byteCount * 10;
    std::size_t unit = 0;
    for (; tenths >= 10000 && unit + 1 < units.size(); ++unit)
        tenths = (tenths + 500) / 1000;
    std::string text = std::to_string(tenths / 10);
    if (unit > 0 && tenths < 100)
        text += '.' + std::to_string(tenths % 10);
    return text + ' ' + units[unit];
}
