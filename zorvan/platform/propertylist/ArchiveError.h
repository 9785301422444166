#pragma once

#include <stdexcept>

namespace zorvan {

/// Why something cannot be archived, or an archive cannot be read: `what()` is a short lower-case
/// phrase for people. Classes of your own throw it too, from their `decode`, when what they find
/// makes no sense.
class ArchiveError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

} // namespace zorvan
