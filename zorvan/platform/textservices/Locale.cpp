#include <zorvan/platform/textservices/Locale.h>

#include <zorvan/platform/foundation/internal/ForkParticipant.h>
#include <zorvan/platform/textservices/internal/requireMemory.h>

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
    internal::requireMemory(status);
    if (U_FAILURE(status) || status == U_STRING_NOT_TERMINATED_WARNING)
        return {};
    std::string result = buffer;
    if (const auto at = result.find(posixVariant); at != std::string::npos)
        result.erase(at, posixVariant.size());
    return result;
}

constinit internal::BriefMutex mutex; // also while the locale is first asked for
const internal::ForkParticipant::Joined joined(mutex);
constinit std::atomic<std::uint64_t> currentGeneration{0};

Locale& currentLocale() {
    static Locale locale(uloc_getDefault());
    return locale;
}

} // namespace

Locale::Locale(std::string_view identifier)
    : identifier_(canonicalIdentifier(std::string(identifier))) {}

Locale Locale::current() {
    const std::lock_guard lock(mutex);
    return currentLocale();
}

void Locale::setCurrent(const Locale& locale) {
    const std::lock_guard lock(mutex);
    currentLocale() = locale;
    currentGeneration.fetch_add(1, std::memory_order_release);
}

std::uint64_t Locale::generation() noexcept {
    return currentGeneration.load(std::memory_order_acquire);
}

} // namespace zorvan
