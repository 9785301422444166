// A MIME database written by a stranger: its cache files, and the file of a type's words, each
// after a NUL. Whatever is read must be what can be asked for again.

#include <fuzz/Fuzzing.h>
#include <fuzz/ScratchFolder.h>
#include <zorvan/platform/coreservices/internal/MimeDatabase.h>

#include <fstream>

using zorvan::coreservices::MimeDatabase;

namespace {

const std::filesystem::path& folder() {
    static const ScratchFolder folder;
    static const bool hasImages = std::filesystem::create_directories(folder.path() / "image");
    (void)hasImages;
    return folder.path();
}

void check(const MimeDatabase& database, const std::string& type) {
    require(database.contains(type));
    require(database.typeOfIdentifier(MimeDatabase::identifierOf(type)).has_value());
    for (const std::string& parent : database.declared(type).parents)
        require(database.contains(parent));
    for (const std::string& extension : database.declared(type).extensions)
        require(database.typeOfExtension(extension).has_value());
    (void)database.comment(type, "");
    (void)database.comment(type, "de");
}

} // namespace

void tryOut(std::span<const std::uint8_t> input) {
    const std::string_view text = textOf(input);
    std::string_view rest = text;
    for (const char* name : {"globs2", "subclasses", "image/x-a.xml"})
        std::ofstream(folder() / name, std::ios::binary) << takePart(rest);
    const MimeDatabase database({folder().string()});
    (void)database.comment("image/x-a", "");
    (void)database.comment("image/x-a", std::string(rest.substr(0, 8)));
    // Whatever the input names may be a type, an extension, or neither.
    for (std::size_t start = 0; start < text.size();) {
        const std::size_t end =
            std::min(text.find_first_of(std::string_view(":\n \0", 4), start), text.size());
        const std::string word(text.substr(start, end - start));
        start = end + 1;
        if (database.contains(word))
            check(database, word);
        if (const auto type = database.typeOfExtension(word))
            require(database.contains(*type));
    }
}
