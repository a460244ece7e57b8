#pragma once

#include <HalvexDriverLink/CLink.h>

#include <memory>
#include <string>

enum class SerialParity { None, Even, Odd };

struct SerialSettings {
    std::string device; // "/dev/ttyUSB0", "COM3"
    unsigned baud = 9600;
    unsigned dataBits = 8;
    SerialParity parity = SerialParity::None;
    unsigned stopBits = 1; // 1 or 2
};

// A serial line. A device that vanishes while open fails one operation with -1 and is closed; open()
// fails until the device is back.
class HALVEXDRIVERLINK_EXPORT CLinkSerial final : public CLink {
public:
    explicit CLinkSerial(SerialSettings settings);
    ~CLinkSerial() override;

    void reset() override;
    int open() override;
    void close() override;
    int send(const char* data, int length, int timeoutMs) override;
    int receive(char* buffer, int capacity, int& received, int timeoutMs) override;
    int kind() const override { return serialKind; }

    // Holds the line in break for `ms` milliseconds. 0, or -1 when the device refuses.
    int sendBreak(int ms);

private:
    void wake() override;

    struct Port; // keeps Asio out of the header
    const SerialSettings settings;
    std::unique_ptr<Port> port;
};
