#include <zorvan/version.h>

#include <string_view>

#define TEXT_OF(value) #value
#define TEXT(value) TEXT_OF(value)

static_assert(std::string_view(ZORVAN_VERSION_STRING) == EXPECTED);
static_assert(std::string_view(TEXT(ZORVAN_VERSION_MAJOR) "." TEXT(ZORVAN_VERSION_MINOR) "." TEXT(
                  ZORVAN_VERSION_PATCH)) == EXPECTED);
static_assert(ZORVAN_VERSION > ZORVAN_MAKE_VERSION(0, 0, 999));
static_assert(ZORVAN_VERSION <
              ZORVAN_MAKE_VERSION(ZORVAN_VERSION_MAJOR, ZORVAN_VERSION_MINOR + 1, 0));
