#include <tests/Testing.h>

#include <zorvan/media/AVFileType.h>
#include <zorvan/media/AVVideoCodecType.h>

namespace {

TEST(AVFileType, HasAPlaceAndAnExtensionUnlessUnknown) {
    std::vector<std::string_view> extensions;
    for (const AVFileType& type : AVFileType::allValues())
        extensions.push_back(type.pathExtension());
    EXPECT_EQ(extensions,
              (std::vector<std::string_view>{"ac3",  "amr",  "dng", "3gp", "aifc", "aiff", "avci",
                                             "heic", "heif", "jpg", "tif", "wav",  "3g2",  "mp4",
                                             "au",   "m4a",  "m4v", "mp3", "eac3", "mov"}));
    EXPECT_EQ(AVFileTypeCoreAudioFormat.pathExtension(), "caf");
    EXPECT_EQ(AVFileType({.rawValue = "com.apple.quicktime-movie"}).index(), 19);
    EXPECT_EQ(AVFileTypeCoreAudioFormat.index(), 0);
    const AVFileType unknown({.rawValue = "org.example.film"});
    EXPECT_EQ(unknown.index(), 0);
    EXPECT_DEATH(static_cast<void>(unknown.pathExtension()),
                 "^AVFileType is not supported org.example.film\n$");
}

TEST(AVFileType, ValuesKeepTheirText) {
    AVFileType made({.rawValue = std::string("org.example.") + "a-rather-long-identifier"});
    const AVFileType moved = std::move(made);
    EXPECT_EQ(made, moved);
    const std::unordered_set<AVFileType> types{AVFileTypeMPEG4, moved,
                                               AVFileType({.rawValue = "public.mpeg-4"})};
    EXPECT_EQ(types.size(), 2u);
    EXPECT_EQ(AVVideoCodecTypeHEVC.rawValue(), "hvc1");
}

} // namespace
