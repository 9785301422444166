// Mistakes that the compiler has to name in one line, and uses of texts that would be gone.

#include <zorvan/platform/foundation/PropertyList.h>
#include <zorvan/platform/textservices/Characters.h>
#include <zorvan/platform/textservices/TextAttributes.h>

using namespace zorvan;

PropertyList made();
AttributeDictionary attributes();

void misuse() {
#if defined(A_KIND_THAT_THERE_IS_NOT)
    if (const auto number = made().as<std::vector<int>>())
        return;
#elif defined(A_VIEW_OF_WHAT_IS_GONE)
    if (const auto text = made().as<std::string_view>())
        return;
#elif defined(CHARACTERS_OF_WHAT_IS_GONE)
    (void)Characters(std::string("text"));
#elif defined(AN_ATTRIBUTE_OF_WHAT_IS_GONE)
    (void)attribute<bool>(attributes(), AttributeName::link);
#else
    const std::string kept = "text";
    (void)Characters(kept), (void)Characters("text"), (void)made().as<double>();
#endif
}
