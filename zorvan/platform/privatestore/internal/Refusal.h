#pragma once

#include <stdexcept>

namespace zorvan::privatestore {

/// What is in a place is not as it has to be, and is left alone; the text says why.
struct Refusal : std::runtime_error {
    using runtime_error::runtime_error;
};

} // namespace zorvan::privatestore
