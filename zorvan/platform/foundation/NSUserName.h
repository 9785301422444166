#pragma once

#include <string>

namespace zorvan {

/// The login name of the user the program runs as; empty when the system knows none.
[[nodiscard]] std::string NSUserName();

} // namespace zorvan
