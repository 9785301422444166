#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace zorvan::coreservices {

/// What the desktop's shared MIME database says about file extensions and kinds of data. Never
/// changes once read, so threads may share it.
class MimeDatabase {
public:
    /// The database of this machine, read on the first call. Empty where there is none.
    static const MimeDatabase& shared();

    /// Reads the "globs2" and "subclasses" files of each directory. The first directory counts
    /// most. A file that is missing, unreadable or larger than 16 MiB is left out, and so is every
    /// line that makes no sense.
    explicit MimeDatabase(std::vector<std::string> directories);

    /// "image/x-tga" of "tga", in lower case. Absent for an unknown extension.
    std::optional<std::string> typeOfExtension(std::string_view lowerExtension) const;

    /// The type that `identifierOf` gave this identifier. Absent when the database has no such
    /// type.
    std::optional<std::string> typeOfIdentifier(std::string_view identifier) const;

    bool contains(std::string_view type) const { return types_.contains(std::string(type)); }

    struct Type {
        std::vector<std::string> parents;    // what it is declared to be a special case of
        std::vector<std::string> extensions; // in the order of the database
    };
    /// What is known of a type; nothing of an unknown one.
    const Type& declared(std::string_view type) const;

    /// The words for the type in the wanted language ("de" or "pt_BR"; empty means English), read
    /// from its own file. Absent when there are none.
    std::optional<std::string> comment(std::string_view type, std::string_view language) const;

    /// "org.freedesktop.mime.image.x-tga": what identifiers cannot hold becomes a hyphen.
    static std::string identifierOf(std::string_view type);

private:
    struct Match {
        std::string type;
        int weight = 0;
    };

    void readGlobs(std::string_view text);
    void readGlob(std::string_view line);
    void readSubclasses(std::string_view text);

    std::vector<std::string> directories_;
    std::unordered_map<std::string, Match> byExtension_;
    std::unordered_map<std::string, Type> types_;
    std::unordered_map<std::string, std::string> byIdentifier_;
};

} // namespace zorvan::coreservices
