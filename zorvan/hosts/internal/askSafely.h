#pragma once

#include <exception>
#include <iostream>
#include <set>
#include <string>

namespace zorvan::internal {

/// One line on standard output, once for each message, and for the first of them only: a view that
/// is shown is asked again and again.
inline void reportFailure(const char* what) {
    constexpr std::size_t most = 32;
    static std::set<std::string> said;
    if (said.size() < most && said.insert(what).second)
        std::cout << "A view could not be filled: " << what << std::endl;
}

/// What a data source or a delegate gives, or, when it throws, a value of nothing.
template <class Ask>
auto askSafely(const Ask& ask) noexcept -> decltype(ask()) {
    try {
        return ask();
    } catch (const std::exception& failure) {
        reportFailure(failure.what());
    } catch (...) {
        reportFailure("what was thrown is no std::exception");
    }
    return {};
}

} // namespace zorvan::internal
