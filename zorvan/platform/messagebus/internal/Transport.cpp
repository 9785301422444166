#include <zorvan/platform/messagebus/internal/Transport.h>

#include <zorvan/platform/foundation/internal/functionBeside.h>

#include <utility>

namespace zorvan::internal {

namespace {

class LoopbackTransport final : public Transport {
public:
    explicit LoopbackTransport(Receive receive) : receive_(std::move(receive)) {}

    void send(const std::string&, Data message) override { receive_(message); }

private:
    const Receive receive_;
};

std::unique_ptr<Transport> makeBusTransport(const Transport::Receive& receive) {
    static const auto make = ZORVAN_FUNCTION(ZORVAN_SESSION_BUS, zorvanMakeBusTransport);
    std::unique_ptr<Transport> transport;
    if (make)
        make(receive, transport);
    return transport;
}

} // namespace

std::unique_ptr<Transport> makeTransport(const Transport::Receive& receive) {
    if (auto bus = makeBusTransport(receive))
        return bus;
    if (auto sockets = makeSocketTransport(receive))
        return sockets;
    return std::make_unique<LoopbackTransport>(receive);
}

} // namespace zorvan::internal
