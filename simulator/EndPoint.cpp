#include "EndPoint.h"

#include "Units.h"

namespace sim {

namespace {

constexpr std::string_view udpScheme = "udp://";
constexpr std::string_view serialScheme = "serial:";

bool startsWith(std::string_view text, std::string_view start) {
    return text.substr(0, start.size()) == start;
}

bool parseUdp(std::string_view text, EndPoint& endPoint, std::string& error) {
    const std::size_t colon = text.rfind(':');
    std::string_view host = text.substr(0, colon);
    if (host.find(':') != std::string_view::npos && host.front() != '[') {
        error = "needs brackets around an IPv6 address, as in udp://[::1]:5050";
        return false;
    }
    if (host.size() > 2 && host.front() == '[' && host.back() == ']') // [::1]
        host = host.substr(1, host.size() - 2);
    const auto port =
        colon == std::string_view::npos ? std::nullopt : parseInteger(text.substr(colon + 1), 0, 65535);
    if (host.empty() || !port) {
        error = "needs a host and a port, as in udp://192.168.10.5:5050";
        return false;
    }
    endPoint.kind = EndPoint::Kind::Udp;
    endPoint.host = host;
    endPoint.port = static_cast<std::uint16_t>(*port);
    return true;
}

bool parseParity(std::string_view text, Parity& parity) {
    if (text == "none")
        parity = Parity::None;
    else if (text == "even")
        parity = Parity::Even;
    else if (text == "odd")
        parity = Parity::Odd;
    else
        return false;
    return true;
}

bool parseCount(std::string_view text, long long lowest, long long highest, unsigned& count) {
    const auto number = parseInteger(text, lowest, highest);
    if (number)
        count = static_cast<unsigned>(*number);
    return number.has_value();
}

// Keys that do not concern the simulator are passed over.
bool parseSerialSetting(std::string_view key, std::string_view value, SerialSettings& settings,
                        std::string& error) {
    bool good = true;
    if (key == "baud") {
        good = parseCount(value, 1, 10000000, settings.baud);
        error = "baud must be a number of bits a second, as in baud=19200";
    } else if (key == "parity") {
        good = parseParity(value, settings.parity);
        error = "parity must be none, even or odd";
    } else if (key == "stop") {
        good = parseCount(value, 1, 2, settings.stopBits);
        error = "stop must be 1 or 2";
    } else if (key == "data") {
        good = parseCount(value, 5, 8, settings.dataBits);
        error = "data must be 5 to 8";
    }
    return good;
}

bool parseSerial(std::string_view text, EndPoint& endPoint, std::string& error) {
    endPoint.kind = EndPoint::Kind::Serial;
    endPoint.path = takeUntil(text, '?');
    if (endPoint.path.empty()) {
        error = "needs a device, as in serial:/dev/ttyUSB0?baud=19200&parity=none&stop=1";
        return false;
    }
    while (!text.empty()) {
        std::string_view value = takeUntil(text, '&');
        const std::string_view key = takeUntil(value, '=');
        if (!parseSerialSetting(key, value, endPoint.serial, error))
            return false;
    }
    return true;
}

} // namespace

std::chrono::nanoseconds SerialSettings::characterTime() const {
    const unsigned bits = 1 + dataBits + (parity == Parity::None ? 0U : 1U) + stopBits;
    return std::chrono::nanoseconds(std::chrono::seconds(bits)) / baud;
}

bool parseEndPoint(const std::string& text, EndPoint& endPoint, std::string& error) {
    const std::string_view view = text;
    if (startsWith(view, udpScheme))
        return parseUdp(view.substr(udpScheme.size()), endPoint, error);
    if (startsWith(view, serialScheme))
        return parseSerial(view.substr(serialScheme.size()), endPoint, error);
    error = "must begin with udp:// or serial:";
    return false;
}

} // namespace sim
