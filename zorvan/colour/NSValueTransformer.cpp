#include <zorvan/colour/NSValueTransformer.h>

#include <map>
#include <mutex>
#include <utility>

namespace zorvan {

namespace {

using Transformer = std::shared_ptr<const NSValueTransformer>;

struct Registry {
    std::mutex mutex;
    std::map<std::string, Transformer, std::less<>> transformers;

    static Registry& shared() {
        static Registry registry;
        return registry;
    }
};

} // namespace

std::any NSValueTransformer::reverseTransformedValue(const std::any&) const { return {}; }

void NSValueTransformer::setValueTransformer(Transformer transformer, std::string_view name) {
    Registry& registry = Registry::shared();
    const std::lock_guard lock(registry.mutex);
    // Swapped, so that what was registered is let go only after the lock.
    if (transformer)
        std::swap(registry.transformers[std::string(name)], transformer);
    else if (const auto found = registry.transformers.find(name);
             found != registry.transformers.end()) {
        transformer = std::move(found->second);
        registry.transformers.erase(found);
    }
}

bool NSValueTransformer::addValueTransformer(Transformer transformer, std::string_view name) {
    if (!transformer)
        return false;
    Registry& registry = Registry::shared();
    const std::lock_guard lock(registry.mutex);
    return registry.transformers.try_emplace(std::string(name), std::move(transformer)).second;
}

Transformer NSValueTransformer::valueTransformer(std::string_view name) {
    Registry& registry = Registry::shared();
    const std::lock_guard lock(registry.mutex);
    const auto found = registry.transformers.find(name);
    return found == registry.transformers.end() ? nullptr : found->second;
}

} // namespace zorvan
