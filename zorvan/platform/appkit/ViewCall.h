#pragma once

#include <functional>
#include <string>

namespace zorvan {

/// One call of a view, told to whoever watches the view: a host that shows it in a real window, or
/// a test. `arguments` is text for people, one argument after the other.
struct ViewCall {
    std::string name;
    std::string arguments;

    friend bool operator==(const ViewCall&, const ViewCall&) = default;
};

/// Is told of each call after the view has changed.
using ViewCallObserver = std::function<void(const ViewCall&)>;

} // namespace zorvan
