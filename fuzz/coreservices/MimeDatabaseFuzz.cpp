// A MIME database written by a stranger: its cache files, and the file of a type's words, each
// after a NUL. Whatever is read must be what can be asked for again.

#include <fuzz/ScratchFolder.h>
#include <zorvan/platform/coreservices/internal/MimeDatabase.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>

using zorvan::coreservices::MimeDatabase;

namespace {

const std::filesystem::path& folder() {
    static const ScratchFolder folder;
    static const bool hasImages = std::filesystem::create_directories(folder.path() / "image");
    (void)hasImages;
    return folder.path();
}

void expect(bool isTrue) {
    if (!isTrue)
        std::abort();
}

/// Takes the text up to the next NUL off the input and writes it to a file.
void writePart(std::string_view& input, const char* name) {
    const std::string_view part = input.substr(0, input.find('\0'));
    input.remove_prefix(std::min(part.size() + 1, input.size()));
    std::ofstream(folder() / name, std::ios::binary) << part;
}

void check(const MimeDatabase& database, const std::string& type) {
    expect(database.contains(type));
    expect(database.typeOfIdentifier(MimeDatabase::identifierOf(type)).has_value());
    for (const std::string& parent : database.declared(type).parents)
        expect(database.contains(parent));
    for (const std::string& extension : database.declared(type).extensions)
        expect(database.typeOfExtension(extension).has_value());
    (void)database.comment(type, "");
    (void)database.comment(type, "de");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::string_view input(reinterpret_cast<const char*>(data), size);
    for (const char* name : {"globs2", "subclasses", "image/x-a.xml"})
        writePart(input, name);
    const MimeDatabase database({folder().string()});
    (void)database.comment("image/x-a", "");
    (void)database.comment("image/x-a", std::string(input.substr(0, 8)));
    // Whatever the input names may be a type, an extension, or neither.
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    for (std::size_t start = 0; start < text.size();) {
        const std::size_t end =
            std::min(text.find_first_of(std::string_view(":\n \0", 4), start), text.size());
        const std::string word(text.substr(start, end - start));
        start = end + 1;
        if (database.contains(word))
            check(database, word);
        if (const auto type = database.typeOfExtension(word))
            expect(database.contains(*type));
    }
    return 0;
}
