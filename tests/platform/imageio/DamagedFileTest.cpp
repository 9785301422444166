#include "Support.h"
#include <tests/Testing.h>
#include <tests/files/ChildProcess.h>
#include <tests/files/TemporaryFolder.h>

namespace zorvan::imageio {
namespace {

TEST(DamagedFile, CutAnywhereItIsAnErrorAndChangedItNeverCrashes) {
    const Bitmap original = pattern(150, 100);
    for (const FileFormat format : formats) {
        const Data whole = encoded(format, original, {{"Orientation", 6}});
        for (int cut = 0; cut < 40; ++cut) {
            Data bytes = whole;
            bytes.resize(whole.size() * static_cast<std::size_t>(cut) / 40);
            SCOPED_TRACE(testing::Message() << typeIdentifier(format) << ' ' << bytes.size());
            const auto properties = ImageReader::open(bytes)->properties(0);
            if (cut == 39 && format != FileFormat::tiff) { // which may have its head at the end
                ASSERT_TRUE(properties);
                EXPECT_EQ(number(*properties, "PixelWidth"), 150);
                EXPECT_EQ(number(*properties, "Orientation"), 6);
            }
            for (const std::int64_t limit : {0, 10}) {
                const std::string error = errorOf(bytes, {.maximumPixelSize = limit});
                EXPECT_NE(error, "");
                EXPECT_TRUE(cut < 2 || error == "the file is cut short") << error;
            }
        }
        readDamaged(encoded(format, pattern(40, 30, true), {{"Orientation", 6}}), 150);
    }
}

TEST(DamagedFile, ContentDecidesNotTheName) {
    const TemporaryFolder folder;
    const auto store = [&](const char* name, const Data& bytes) {
        folder.file(name, ::textOf(bytes));
        return folder.url(name).path();
    };
    const Data png = encoded(FileFormat::png, pattern(12, 8));
    EXPECT_TRUE(ImageReader::open(store("really-a.jpg", png))->decode(0, {}));
    ASSERT_EQ(mkfifo(folder.url("pipe.png").path().c_str(), 0600), 0);
    const std::pair<std::string, std::string> table[] = {
        {store("text.png", bytesOf("hello, world")), "not a picture"},
        {store("empty.png", {}), "the file is empty"},
        {store("start.png", bytesOf("\x89PN")), "the file is cut short"},
        {folder.path() / "missing.png", "there is no such file"},
        {folder.path() / "pipe.png", "not a regular file"},
        {folder.path(), "not a regular file"},
    };
    for (const auto& [path, error] : table) {
        const auto reader = ImageReader::open(path);
        EXPECT_EQ(reader->error(), error) << path;
        EXPECT_FALSE(reader->format());
        EXPECT_EQ(reader->count(), 0);
        EXPECT_FALSE(reader->properties(0));
        EXPECT_FALSE(reader->decode(0, {}));
        EXPECT_FALSE(reader->embeddedThumbnail(0));
        EXPECT_EQ(reader->error(), error) << path;
    }
    folder.setMode("text.png", 0);
    asOrdinaryUser([&] {
        EXPECT_EQ(ImageReader::open(folder.path() / "text.png")->error(),
                  "the file may not be read");
    });
}

void setBig32(Data& bytes, std::size_t at, std::uint32_t value) {
    for (std::size_t i = 0; i < 4; ++i)
        bytes[at + i] = static_cast<std::byte>(value >> (24 - 8 * i) & 255);
}

TEST(DamagedFile, SizesBeyondTheBoundAreRefusedBeforeAllocation) {
    const Bitmap picture = pattern(64, 48);
    Data png = encoded(FileFormat::png, picture);
    setBig32(png, 16, 900'000);
    setBig32(png, 20, 900'000);
    Data jpeg = encoded(FileFormat::jpeg, picture);
    const std::size_t frame = positionOf(jpeg, std::string_view("\xFF\xC0\0\x11\x08", 5)) + 5;
    setBig32(jpeg, frame, 0xFFDCFFDC);
    Data tiff = encoded(FileFormat::tiff, picture);
    // The entry of the length: tag, type, count, value, little-endian.
    const std::size_t entry = positionOf(tiff, std::string_view("\x01\x01\x03\0\x01\0\0\0", 8));
    tiff[entry + 2] = std::byte{4};
    setBig32(tiff, entry + 8, 0x7F7F7F7F);
    Data longest = encoded(FileFormat::png, pattern(1'000'000, 1));
    EXPECT_EQ(decoded(longest, {.maximumPixelSize = 9}).width(), 9);
    setBig32(longest, 16, 1'000'001);
    const std::array files = {png, jpeg, tiff, longest};
    for (std::size_t i = 0; i < files.size(); ++i)
        for (const std::int64_t limit : {0, 100})
            EXPECT_EQ(errorOf(files[i], {.maximumPixelSize = limit}), "the picture is too large")
                << i;
}

} // namespace
} // namespace zorvan::imageio
