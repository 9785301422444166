#include <tests/Testing.h>

#include <zorvan/platform/coreservices/UTType.h>
#include <zorvan/platform/coreservices/internal/TypeDeclarations.h>
#include <zorvan/platform/coreservices/internal/words.h>

namespace {

auto typeOf(std::string_view extension) {
    return UTTypeCreatePreferredIdentifierForTag(kUTTagClassFilenameExtension, extension);
}

} // namespace

TEST(UTType, FindsTypesByTheirTags) {
    for (const auto& [extension, identifier] : {std::pair("JPEG", "public.jpeg"),
                                                {"apng", "public.png"},
                                                {"txt", "public.plain-text"},
                                                {"C++", "public.c-plus-plus-source"},
                                                {"app", "com.apple.application-bundle"}})
        EXPECT_THAT(typeOf(extension), Optional(Eq(identifier))) << extension;
    for (const char* unknown : {"", "no-such-extension", ".jpg", "jpg ", "\xFF\xFE"})
        EXPECT_FALSE(typeOf(unknown)) << unknown;
    EXPECT_THAT(UTTypeCreatePreferredIdentifierForTag(kUTTagClassMIMEType, "Image/PNG"),
                Optional(Eq("public.png")));
    EXPECT_FALSE(UTTypeCreatePreferredIdentifierForTag(kUTTagClassMIMEType, "image/no-such"));
    EXPECT_FALSE(UTTypeCreatePreferredIdentifierForTag("public.other-class", "png"));
    EXPECT_TRUE(isPackageExtension("RTFD") && !isPackageExtension("framework"));
}

TEST(UTType, KnowsWhatConformsToWhat) {
    using Names = std::vector<std::string_view>;
    struct {
        std::string_view identifier;
        Names conformsTo, not_;
    } const table[] = {
        {"public.jpeg", {"public.image", "PUBLIC.DATA", "public.content"}, {"public.png"}},
        {"public.image", {}, {"public.jpeg"}},
        {"public.rtf", {}, {"public.plain-text"}},
        {"com.adobe.pdf", {"public.composite-content"}, {"public.image"}},
        {"public.mp3", {"public.audio"}, {"public.movie"}},
        {"com.apple.rtfd", {"com.apple.package"}, {"public.data"}},
        {"unheard.of", {"Unheard.Of"}, {"public.item"}},
        {"", {""}, {"public.item"}},
    };
    for (const auto& [identifier, conformsTo, not_] : table) {
        for (const auto other : conformsTo)
            EXPECT_TRUE(UTTypeConformsTo(identifier, other)) << identifier << " to " << other;
        for (const auto other : not_)
            EXPECT_FALSE(UTTypeConformsTo(identifier, other)) << identifier << " to " << other;
    }
}

TEST(UTType, NoTagBelongsToTwoTypes) {
    std::set<std::string> identifiers, extensions, mimeTypes;
    for (const auto& type : coreservices::typeDeclarations()) {
        EXPECT_TRUE(identifiers.emplace(type.identifier).second) << type.identifier;
        EXPECT_FALSE(type.description.empty()) << type.identifier;
        coreservices::forEachPart(type.extensions, ' ', [&](std::string_view extension) {
            EXPECT_TRUE(extensions.emplace(extension).second) << extension;
            EXPECT_EQ(extension, coreservices::lowered(extension));
        });
        coreservices::forEachPart(type.mimeTypes, ' ', [&](std::string_view mimeType) {
            EXPECT_TRUE(mimeTypes.emplace(mimeType).second) << mimeType;
        });
    }
}

TEST(UTType, DescribesAndDeclares) {
    const auto jpeg = UTTypeCopyDeclaration("Public.JPEG");
    ASSERT_TRUE(jpeg);
    EXPECT_EQ(jpeg->at("UTTypeIdentifier"), PropertyList("public.jpeg"));
    EXPECT_EQ(jpeg->at("UTTypeConformsTo"), PropertyList(PropertyList::Array{"public.image"}));
    const auto& tags = *jpeg->at("UTTypeTagSpecification").as<PropertyList::Dictionary>();
    EXPECT_EQ(tags.at("public.mime-type"),
              PropertyList(PropertyList::Array{"image/jpeg", "image/jpg"}));
    EXPECT_EQ(tags.at("public.filename-extension").as<PropertyList::Array>()->front(),
              PropertyList("jpg"));
    EXPECT_EQ(UTTypeCopyDeclaration(kUTTypeItem)->size(), 2u); // of what has neither
    EXPECT_FALSE(UTTypeCopyDeclaration("unheard.of"));
    EXPECT_FALSE(UTTypeCopyDescription("unheard.of"));
}

TEST(OSType, IsTheTextOfItsBytes) {
    EXPECT_EQ(UTCreateStringForOSType(0x4A504547), "JPEG");
    EXPECT_EQ(UTCreateStringForOSType(0x8E20DB00), std::string("é €\0", 7));
    for (const char* text : {"", "abc", "abcde", "ab\xC3", "日本語字", "\xFF\xFF\xFF\xFF"})
        EXPECT_EQ(UTGetOSTypeFromString(text), 0u) << text;
}

TEST(OSType, EveryCodeComesBackFromItsText) {
    std::mt19937 random(7);
    for (int i = 0; i < 20000; ++i) {
        const auto code = static_cast<std::uint32_t>(random());
        ASSERT_EQ(UTGetOSTypeFromString(UTCreateStringForOSType(code)), code);
    }
}
