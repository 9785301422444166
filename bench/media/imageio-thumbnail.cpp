// imageio-thumbnail IN SIZE [OUT]: makes a thumbnail as a whole process, to be timed beside
// vipsthumbnail and gm. OUT is a PNG or, by its extension, a JPEG. Without OUT: prints the
// properties.
#include <zorvan/platform/imageio/ImageReader.h>
#include <zorvan/platform/imageio/ImageWriter.h>

#include <cstdlib>
#include <fstream>
#include <iostream>
#include <string>

using namespace zorvan;

namespace {

void print(const PropertyList& value, int indent) {
    if (const auto* text = value.as<std::string>())
        std::cout << '"' << *text << "\"\n";
    else if (const auto* number = value.as<NSNumber>())
        std::cout << number->doubleValue() << '\n';
    else if (const auto* list = value.as<PropertyList::Array>()) {
        std::cout << "[\n";
        for (const PropertyList& element : *list) {
            std::cout << std::string(static_cast<std::size_t>(indent) + 2, ' ');
            print(element, indent + 2);
        }
    } else if (const auto* entries = value.as<PropertyList::Dictionary>()) {
        std::cout << '\n';
        for (const auto& [key, entry] : *entries) {
            std::cout << std::string(static_cast<std::size_t>(indent) + 2, ' ') << key << ": ";
            print(entry, indent + 2);
        }
    }
}

int fail(const imageio::ImageReader& reader) {
    std::cerr << reader.error() << '\n';
    return 1;
}

} // namespace

int main(int argc, char** argv) {
    if (argc < 3)
        return 2;
    const auto reader = imageio::ImageReader::open(std::string(argv[1]));
    if (argc == 3) {
        const auto properties = reader->properties(0);
        if (!properties)
            return fail(*reader);
        std::cout << "pictures: " << reader->count();
        print(*properties, 0);
        return 0;
    }
    const auto bitmap = reader->decode(0, {.maximumPixelSize = std::atoll(argv[2])});
    if (!bitmap)
        return fail(*reader);
    const std::string out = argv[3];
    const imageio::FileFormat format = out.ends_with(".jpg")    ? imageio::FileFormat::jpeg
                                       : out.ends_with(".tiff") ? imageio::FileFormat::tiff
                                       : out.ends_with(".heic") ? imageio::FileFormat::heic
                                                                : imageio::FileFormat::png;
    const imageio::Frame frame = {.bitmap = &*bitmap};
    const auto bytes = imageio::encode(format, {&frame, 1});
    if (!bytes)
        return 1;
    std::ofstream(out, std::ios::binary)
        .write(reinterpret_cast<const char*>(bytes->data()),
               static_cast<std::streamsize>(bytes->size()));
    return 0;
}
