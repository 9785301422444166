#pragma once

#include <zorvan/platform/privatestore/internal/Database.h>

#include <string>

namespace zorvan::security {

/// The database of the items in a folder.
class ItemDatabase : public privatestore::Database {
public:
    /// Makes the file when there is none. Throws `Failure`, too: `errSecNotAvailable` for a
    /// database of another kind or of a newer version, which is left alone.
    explicit ItemDatabase(const privatestore::PrivateFolder& folder);

    /// A transaction that changes items. Throws when a newer version has taken the database over.
    struct Change : Transaction {
        explicit Change(ItemDatabase& database);
    };

    /// What the file system has of it; absent when it is not there.
    static std::optional<struct stat> status(const privatestore::PrivateFolder& folder);

private:
    void prepareSchema();
    void upgrade();
};

/// Where the secure items of the user are: below `$XDG_DATA_HOME`, else "~/.local/share". Throws
/// `Failure` when there is no such place.
std::string standardFolder();

} // namespace zorvan::security
