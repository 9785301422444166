#pragma once

#include <zorvan/platform/foundation/Data.h>

#include <cstddef>
#include <functional>
#include <memory>
#include <span>
#include <string>

namespace zorvan::internal {

/// Carries encoded notifications between the processes of a session. All functions may be called
/// from any thread.
class Transport {
public:
    /// Called on one thread, in the order of arrival, with bytes that anybody may have sent.
    using Receive = std::function<void(std::span<const std::byte>)>;

    virtual ~Transport() = default;

    /// What is sent under the name from now on is received, at least. By default everything is.
    virtual void want(const std::string&) {}
    virtual void unwant(const std::string&) {}

    virtual void send(const std::string& name, Data message) = 0;
};

/// Over the session bus; null when it cannot be reached.
extern "C" void zorvanMakeBusTransport(Transport::Receive receive,
                                       std::unique_ptr<Transport>& transport);

/// Through sockets in the user's run-time directory; null when that is missing or another's.
std::unique_ptr<Transport> makeSocketTransport(Transport::Receive receive);

/// The best there is; within the process at the least.
std::unique_ptr<Transport> makeTransport(const Transport::Receive& receive);

} // namespace zorvan::internal
