#include <zorvan/media/AVFileType.h>

#include <zorvan/platform/foundation/fatalError.h>

#include <algorithm>
#include <array>
#include <string>

namespace zorvan {
namespace {

/// The types of `allValues`, then the one that is not among them.
const auto& types() {
    static const std::array all{AVFileTypeAC3,
                                AVFileTypeAMR,
                                AVFileTypeDNG,
                                AVFileType3GPP,
                                AVFileTypeAIFC,
                                AVFileTypeAIFF,
                                AVFileTypeAVCI,
                                AVFileTypeHEIC,
                                AVFileTypeHEIF,
                                AVFileTypeJPEG,
                                AVFileTypeTIFF,
                                AVFileTypeWAVE,
                                AVFileType3GPP2,
                                AVFileTypeMPEG4,
                                AVFileTypeSunAU,
                                AVFileTypeAppleM4A,
                                AVFileTypeAppleM4V,
                                AVFileTypeMPEGLayer3,
                                AVFileTypeEnhancedAC3,
                                AVFileTypeQuickTimeMovie,
                                AVFileTypeCoreAudioFormat};
    return all;
}

constexpr std::array<std::string_view, 21> extensions{
    "ac3", "amr", "dng", "3gp", "aifc", "aiff", "avci", "heic", "heif", "jpg", "tif",
    "wav", "3g2", "mp4", "au",  "m4a",  "m4v",  "mp3",  "eac3", "mov",  "caf"};

} // namespace

std::string_view AVFileType::pathExtension() const {
    const auto found = std::find(types().begin(), types().end(), *this);
    if (found == types().end())
        fatalError("AVFileType is not supported " + std::string(rawValue()));
    return extensions[static_cast<std::size_t>(found - types().begin())];
}

std::span<const AVFileType> AVFileType::allValues() noexcept {
    return std::span(types()).first(types().size() - 1);
}

std::int64_t AVFileType::index() const noexcept {
    const auto all = allValues();
    const auto found = std::find(all.begin(), all.end(), *this);
    return found == all.end() ? 0 : found - all.begin();
}

std::span<const std::string_view> AVFileType::videoExtensions() noexcept {
    static constexpr std::array<std::string_view, 11> values{
        "mov", "qt", "mp4", "m4v", "3g", "3g2", "3gp2", "3gpp", "sdv", "4k", "hevc"};
    return values;
}

std::span<const std::string_view> AVFileType::audioExtensions() noexcept {
    static constexpr std::array<std::string_view, 14> values{"au",  "snd",  "mp3",  "ac3", "amr",
                                                             "wav", "wave", "bwf",  "m4a", "caf",
                                                             "aif", "aiff", "aifc", "cdda"};
    return values;
}

} // namespace zorvan
