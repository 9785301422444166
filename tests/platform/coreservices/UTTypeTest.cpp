#include <tests/Testing.h>

#include <zorvan/platform/coreservices/UTType.h>
#include <zorvan/platform/coreservices/internal/TypeDeclarations.h>
#include <zorvan/platform/coreservices/internal/words.h>

namespace {

auto typeOf(std::string_view extension) {
    return UTTypeCreatePreferredIdentifierForTag(kUTTagClassFilenameExtension, extension);
}

const PropertyList::Array& array(const PropertyList::Dictionary& dictionary, const char* key) {
    return *dictionary.at(key).as<PropertyList::Array>();
}

} // namespace

TEST(UTType, FindsTypesByExtension) {
    const std::pair<const char*, const char*> table[] = {
        {"jpg", "public.jpeg"},
        {"JPEG", "public.jpeg"},
        {"tif", "public.tiff"},
        {"apng", "public.png"},
        {"heic", "public.heic"},
        {"txt", "public.plain-text"},
        {"gif", "com.compuserve.gif"},
        {"pdf", "com.adobe.pdf"},
        {"C++", "public.c-plus-plus-source"},
        {"app", "com.apple.application-bundle"},
    };
    for (const auto& [extension, identifier] : table)
        EXPECT_THAT(typeOf(extension), Optional(Eq(identifier))) << extension;
    for (const char* unknown : {"", "no-such-extension", ".jpg", "jpg ", "\xFF\xFE"})
        EXPECT_FALSE(typeOf(unknown)) << unknown;
}

TEST(UTType, FindsTypesByMimeType) {
    EXPECT_THAT(UTTypeCreatePreferredIdentifierForTag(kUTTagClassMIMEType, "Image/PNG"),
                Optional(Eq("public.png")));
    EXPECT_FALSE(UTTypeCreatePreferredIdentifierForTag(kUTTagClassMIMEType, "image/no-such"));
    EXPECT_FALSE(UTTypeCreatePreferredIdentifierForTag("public.other-class", "png"));
}

TEST(UTType, KnowsWhatConformsToWhat) {
    using Names = std::vector<std::string_view>;
    struct {
        std::string_view identifier;
        Names conformsTo, not_;
    } const table[] = {
        {"public.jpeg",
         {"public.image", "PUBLIC.DATA", "public.item", "public.content"},
         {"public.png"}},
        {"public.image", {}, {"public.jpeg"}},
        {"public.c-plus-plus-source", {"public.plain-text"}, {}},
        {"public.rtf", {}, {"public.plain-text"}},
        {"com.adobe.pdf", {"public.composite-content"}, {"public.image"}},
        {"public.mpeg-4-audio", {"public.audio"}, {}},
        {"public.mp3", {}, {"public.movie"}},
        {"public.symlink", {"com.apple.resolvable"}, {}},
        {"com.apple.rtfd", {"com.apple.package"}, {"public.data"}},
        {"com.apple.framework", {}, {"com.apple.package"}},
        {"com.apple.application-bundle", {"public.executable"}, {}},
        {"public.vcard", {"public.contact"}, {}},
        {"public.item", {}, {"public.data"}},
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

TEST(UTType, ConformanceIsAnOrder) {
    const auto all = coreservices::typeDeclarations();
    for (const auto& a : all)
        for (const auto& b : all) {
            const bool ab = UTTypeConformsTo(a.identifier, b.identifier);
            EXPECT_FALSE(ab && a.identifier != b.identifier &&
                         UTTypeConformsTo(b.identifier, a.identifier))
                << a.identifier << " and " << b.identifier;
            for (const auto& c : all)
                EXPECT_TRUE(!ab || !UTTypeConformsTo(b.identifier, c.identifier) ||
                            UTTypeConformsTo(a.identifier, c.identifier));
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
    EXPECT_EQ(array(*jpeg, "UTTypeConformsTo"), PropertyList::Array{"public.image"});
    const auto& tags = *jpeg->at("UTTypeTagSpecification").as<PropertyList::Dictionary>();
    EXPECT_EQ(array(tags, "public.filename-extension").front(), PropertyList("jpg"));
    EXPECT_EQ(array(tags, "public.mime-type").front(), PropertyList("image/jpeg"));

    const auto item = UTTypeCopyDeclaration(kUTTypeItem);
    ASSERT_TRUE(item);
    EXPECT_FALSE(item->contains("UTTypeConformsTo"));
    EXPECT_FALSE(item->contains("UTTypeTagSpecification"));

    EXPECT_FALSE(UTTypeCopyDeclaration("unheard.of"));
    EXPECT_FALSE(UTTypeCopyDescription("unheard.of"));
}

TEST(UTType, KnowsPackages) {
    for (const char* extension : {"app", "RTFD"})
        EXPECT_TRUE(isPackageExtension(extension)) << extension;
    for (const char* extension : {"", "framework", "jpg", "d"})
        EXPECT_FALSE(isPackageExtension(extension)) << extension;
}

TEST(OSType, IsTheTextOfItsBytes) {
    EXPECT_EQ(UTCreateStringForOSType(0x4A504547), "JPEG");
    EXPECT_EQ(UTCreateStringForOSType(0x5445587F), "TEX\x7F");
    EXPECT_EQ(UTCreateStringForOSType(0x8E20DB41), "é €A");
    EXPECT_EQ(UTCreateStringForOSType(0), std::string(4, '\0'));
    EXPECT_EQ(UTGetOSTypeFromString("JPEG"), 0x4A504547u);
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

TEST(UTType, AnswersSeveralThreadsAtOnce) {
    std::vector<std::jthread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back([] {
            for (int n = 0; n < 200; ++n) {
                EXPECT_TRUE(UTTypeConformsTo(*typeOf("jpg"), kUTTypeImage));
                EXPECT_FALSE(typeOf("no-such-extension"));
            }
        });
}
