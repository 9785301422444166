#include <zorvan/platform/appkit/NSAnimationContext.h>

#include <zorvan/platform/foundation/fatalError.h>

#include <vector>

namespace zorvan {

namespace {

std::vector<NSAnimationContext>& contexts() {
    static std::vector<NSAnimationContext> stack(1);
    return stack;
}

} // namespace

void NSAnimationContext::beginGrouping() { contexts().push_back(contexts().back()); }

void NSAnimationContext::endGrouping() {
    if (contexts().size() == 1)
        fatalError("An animation grouping was ended that had not begun.");
    contexts().pop_back();
}

NSAnimationContext& NSAnimationContext::currentContext() { return contexts().back(); }

std::int64_t NSAnimationContext::groupingDepth() {
    return static_cast<std::int64_t>(contexts().size()) - 1;
}

} // namespace zorvan
