#pragma once

// For types that are stored by their raw values; archives know them too.
#include <zorvan/platform/foundation/RawRepresentable.h>
