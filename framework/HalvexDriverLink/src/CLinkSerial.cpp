#include <HalvexDriverLink/CLinkSerial.h>

#include "LinkEnd.h"
#include "SerialBreak.h"

#include <asio/buffer.hpp>

#include <algorithm>
#include <array>
#include <utility>

namespace {

using std::chrono::milliseconds;

// Far more than a serial driver keeps for a reader; the bound is for a line that never falls silent.
constexpr int mostReads = 1000;

using SerialOption = asio::serial_port_base;

SerialOption::parity parityOption(SerialParity parity) {
    switch (parity) {
    case SerialParity::Even:
        return SerialOption::parity(SerialOption::parity::even);
    case SerialParity::Odd:
        return SerialOption::parity(SerialOption::parity::odd);
    case SerialParity::None:
        break;
    }
    return SerialOption::parity(SerialOption::parity::none);
}

// Whether there are such settings at all; which baud rates there are is the device's affair.
asio::error_code check(const SerialSettings& settings) {
    const bool sensible =
        settings.dataBits >= 5 && settings.dataBits <= 8 && settings.stopBits >= 1 && settings.stopBits <= 2;
    return sensible ? asio::error_code() : asio::error::make_error_code(asio::error::invalid_argument);
}

asio::error_code configure(asio::serial_port& port, const SerialSettings& settings) {
    asio::error_code error;
    const auto set = [&](const auto& option) {
        if (!error)
            port.set_option(option, error);
    };
    set(SerialOption::baud_rate(settings.baud));
    set(SerialOption::character_size(settings.dataBits));
    set(parityOption(settings.parity));
    set(SerialOption::stop_bits(settings.stopBits == 2 ? SerialOption::stop_bits::two
                                                       : SerialOption::stop_bits::one));
    set(SerialOption::flow_control(SerialOption::flow_control::none));
    return error;
}

} // namespace

struct CLinkSerial::Port : LinkEnd<asio::serial_port> {
    using LinkEnd::LinkEnd;

    Outcome read(asio::serial_port& device, asio::mutable_buffer buffer, Clock::time_point deadline) {
        const auto start = [&](auto handler) { device.async_read_some(buffer, std::move(handler)); };
        return perform(start, deadline);
    }

    // All of it; a line that takes it in pieces has until the deadline.
    asio::error_code write(asio::serial_port& device, asio::const_buffer rest, Clock::time_point deadline) {
        while (rest.size() > 0) {
            const auto start = [&](auto handler) { device.async_write_some(rest, std::move(handler)); };
            const Outcome outcome = perform(start, deadline);
            if (outcome.error)
                return outcome.error;
            rest += outcome.count;
        }
        return {};
    }

    // Reads away what is there, and tells each piece of it.
    template <typename Tell>
    asio::error_code discard(asio::serial_port& device, const Tell& tell) {
        for (int i = 0; i < mostReads; ++i) {
            const Outcome outcome = read(device, asio::buffer(scrap), Clock::time_point::min());
            if (outcome.error)
                return outcome.isUnfinished() ? asio::error_code() : outcome.error;
            tell(scrap.data(), static_cast<int>(outcome.count));
        }
        return {};
    }

    std::array<char, 4096> scrap; // what a Linux terminal keeps for a reader
};

CLinkSerial::CLinkSerial(SerialSettings line)
    : settings(std::move(line)), port(std::make_unique<Port>([this] { return isInterrupted(); })) {}

CLinkSerial::~CLinkSerial() = default;

void CLinkSerial::reset() {
    close();
    clearInterrupt();
}

int CLinkSerial::open() {
    const int result = port->open([this](asio::serial_port& device) {
        asio::error_code error = check(settings);
        if (!error)
            device.open(settings.device, error);
        if (!error)
            error = claimDevice(device.native_handle());
        if (!error)
            error = configure(device, settings);
        if (!error)
            discardInput(device.native_handle());
        return error;
    });
    return noteOpened(result);
}

void CLinkSerial::close() {
    port->close();
}

int CLinkSerial::send(const char* data, int length, int timeoutMs) {
    const int result = port->use([&](asio::serial_port& device) {
        asio::error_code error =
            port->discard(device, [this](const char* bytes, int count) { noteDiscarded(bytes, count); });
        if (error || length <= 0)
            return error;
        const asio::const_buffer telegram(data, static_cast<std::size_t>(length));
        const Clock::time_point begun = Clock::now();
        error = port->write(device, telegram, begun + milliseconds(std::max(timeoutMs, 0)));
        if (!error)
            noteSent(data, length, begun);
        return error;
    });
    return noteSendEnded(result, data, length);
}

int CLinkSerial::receive(char* buffer, int capacity, int& received, int timeoutMs) {
    received = 0;
    return noteReceiveEnded(port->use([&](asio::serial_port& device) {
        if (capacity <= 0 || isInterrupted())
            return asio::error_code();
        const asio::mutable_buffer area(buffer, static_cast<std::size_t>(capacity));
        const Clock::time_point deadline = Clock::now() + milliseconds(std::max(timeoutMs, 0));
        const WaitLoop::Outcome outcome = port->read(device, area, deadline);
        received = static_cast<int>(outcome.count);
        noteReceived(buffer, received);
        return outcome.isUnfinished() ? asio::error_code() : outcome.error;
    }));
}

int CLinkSerial::sendBreak(int ms) {
    bool supported = true;
    const int result = port->use([&](asio::serial_port& device) {
        if (ms <= 0)
            return asio::error_code();
        asio::error_code error = setBreak(device.native_handle(), true, supported);
        if (!error && supported) {
            port->loop().sleepUntil(Clock::now() + milliseconds(ms));
            error = setBreak(device.native_handle(), false, supported);
        }
        return error;
    });
    return supported ? result : -1;
}

void CLinkSerial::wake() {
    port->loop().wake();
}
