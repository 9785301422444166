#include <tests/Testing.h>

#include <zorvan/files/UTIType.h>

TEST(UTIType, ConstantsHaveTheirIdentifiers) {
    // The irregular ones, and those that are easily mistaken for a neighbour.
    const std::pair<const UTIType&, const char*> table[] = {
        {UTIType::cppSource(), "public.c-plus-plus-source"},
        {UTIType::objCPPSource(), "public.objective-c-plus-plus-source"},
        {UTIType::cppHeader(), "public.c-plus-plus-header"},
        {UTIType::qtMovie(), "com.apple.quicktime-movie"},
        {UTIType::quickTimeImage(), "com.apple.quicktime-image"},
        {UTIType::mP3(), "public.mp3"},
        {UTIType::mpeg4Audio(), "public.mpeg-4-audio"},
        {UTIType::jpeg2000(), "public.jpeg-2000"},
        {UTIType::flatRTFD(), "com.apple.flat-rtfd"},
        {UTIType::cSource(), "public.c-source"},
    };
    for (const auto& [type, identifier] : table)
        EXPECT_EQ(type.identifier(), identifier);
}

TEST(UTIType, IsMadeOfIdentifiersExtensionsAndCodes) {
    const UTIType shouted({.identifier = "PUBLIC.JPEG"});
    EXPECT_EQ(shouted, UTIType::jpeg());
    EXPECT_EQ(shouted.identifier(), "PUBLIC.JPEG");
    EXPECT_NE(shouted, UTIType::png());
    EXPECT_TRUE((std::unordered_set<UTIType>{UTIType::jpeg()}.contains(shouted)));
    EXPECT_EQ(UTIType::make({.fileExtension = "TIF"}), UTIType::tiff());
    EXPECT_FALSE(UTIType::make({.fileExtension = "unheard-of"}));
    const UTIType type({.type = 0x4A504547u});
    EXPECT_EQ(type.identifier(), "JPEG");
    EXPECT_EQ(type.osType(), 0x4A504547u);
    EXPECT_EQ(UTIType::jpeg().osType(), 0u);
    EXPECT_FALSE(type.conforms(UTIType::image()));
}
