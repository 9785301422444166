#include <zorvan/colour/NSValueTransformer.h>

#include <zorvan/platform/foundation/internal/ForkParticipant.h>

#include <map>
#include <mutex>
#include <utility>

namespace zorvan {

namespace {

using Transformer = std::shared_ptr<const NSValueTransformer>;

constinit internal::BriefMutex mutex;
const internal::ForkParticipant::Joined joined(mutex);

using Registry = std::map<std::string, Transformer, std::less<>>;

/// Used under the lock, for the first time too.
Registry& transformers() {
    static Registry registry;
    return registry;
}

} // namespace

std::any NSValueTransformer::reverseTransformedValue(const std::any&) const { return {}; }

void NSValueTransformer::setValueTransformer(Transformer transformer, std::string_view name) {
    const std::lock_guard lock(mutex);
    Registry& registry = transformers();
    // Swapped, so that what was registered is let go only after the lock.
    if (transformer)
        std::swap(registry[std::string(name)], transformer);
    else if (const auto found = registry.find(name); found != registry.end()) {
        transformer = std::move(found->second);
        registry.erase(found);
    }
}

bool NSValueTransformer::addValueTransformer(Transformer transformer, std::string_view name) {
    if (!transformer)
        return false;
    const std::lock_guard lock(mutex);
    return transformers().try_emplace(std::string(name), std::move(transformer)).second;
}

Transformer NSValueTransformer::valueTransformer(std::string_view name) {
    const std::lock_guard lock(mutex);
    const auto found = transformers().find(name);
    return found == transformers().end() ? nullptr : found->second;
}

} // namespace zorvan
