#include <zorvan/platform/textservices/Locale.h>

#include <unicode/uloc.h>

#include <atomic>
#include <mutex>

namespace zorvan {

namespace {

constexpr std::string_view posixVariant = "_POSIX";

std::string canonicalIdentifier(const std::string& identifier) {
    char buffer[ULOC_FULLNAME_CAPACITY] = "";
    UErrorCode status = U_ZERO_ERROR;
    uloc_canonicalize(identifier.c_str(), buffer, sizeof buffer, &status);
    if (U_FAILURE(status) || status == U_STRING_NOT_TERMINATED_WARNING)
        return {};
    std::string result = buffer;
    if (const auto at = result.find(posixVariant); at != std::string::npos)
        result.erase(at, posixVariant.size());
    return result;
}

struct Current {
    std::mutex mutex;
    Locale locale{uloc_getDefault()};
    std::atomic<std::uint64_t> generation{0};
};

Current& shared() {
    static Current current;
    return current;
}

} // namespace

Locale::Locale(std::string_view identifier)
    : identifier_(canonicalIdentifier(std::string(identifier))) {}

Locale Locale::current() {
    Current& current = shared();
    const std::lock_guard lock(current.mutex);
    return current.locale;
}

void Locale::setCurrent(const Locale& locale) {
    Current& current = shared();
    const std::lock_guard lock(current.mutex);
    current.locale = locale;
    current.generation.fetch_add(1, std::memory_order_release);
}

std::uint64_t Locale::generation() noexcept {
    return shared().generation.load(std::memory_order_acquire);
}

} // namespace zorvan
