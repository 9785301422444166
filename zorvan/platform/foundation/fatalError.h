#pragma once

#include <string_view>

namespace zorvan {

/// Stops the program because the caller broke a contract: writes `message` alone as one line to
/// standard error, then calls `abort()`.
[[noreturn]] void fatalError(std::string_view message) noexcept;

} // namespace zorvan
