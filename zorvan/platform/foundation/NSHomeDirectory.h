#pragma once

#include <string>

namespace zorvan {

/// The absolute path of the user's home folder: `$HOME`, else what the system has for the user;
/// empty when neither is one. A program that runs with more rights than its caller does not go by
/// the caller's `$HOME`.
[[nodiscard]] std::string NSHomeDirectory();

} // namespace zorvan
