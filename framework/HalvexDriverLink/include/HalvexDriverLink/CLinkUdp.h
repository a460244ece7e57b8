#pragma once

#include <HalvexDriverLink/CLink.h>

#include <memory>
#include <string>

struct UdpSettings {
    std::string host; // name or address of the controller
    std::uint16_t port = 5050;
};

// A UDP link to one controller. Datagrams from any other address are never seen. A controller that is
// absent ("port unreachable", "host unreachable") is silence, not a failure: an exchange with it takes its
// time-out, neither less nor more than the few milliseconds that rxMessage() promises. A name that nobody
// knows fails open(); the lookup of a name is ended by interrupt() like a wait.
class HALVEXDRIVERLINK_EXPORT CLinkUdp final : public CLink {
public:
    explicit CLinkUdp(UdpSettings settings);
    ~CLinkUdp() override;

    void reset() override;
    int open() override;
    void close() override;
    int send(const char* data, int length, int timeoutMs) override;
    int receive(char* buffer, int capacity, int& received, int timeoutMs) override;
    int kind() const override { return udpKind; }

private:
    void wake() override;

    struct Socket; // keeps Asio out of the header
    const UdpSettings settings;
    std::unique_ptr<Socket> socket;
};
