#include "LinkUrl.h"

#include "Number.h"

#include <algorithm>

namespace host {

namespace {

const std::string udpScheme = "udp://";
const std::string serialScheme = "serial:";
const std::string udpExample = "write udp://HOST:PORT, such as udp://192.168.10.5:5050";
const std::string serialExample =
    "write serial:DEVICE?baud=N&parity=none|even|odd&stop=1|2&data=8, such as serial:/dev/ttyUSB0?baud=19200";

bool startsWith(const std::string& text, const std::string& start) {
    return text.compare(0, start.size(), start) == 0;
}

ParsedLink refuse(const std::string& what, const std::string& remedy) {
    return {std::nullopt, what, remedy};
}

ParsedLink parseUdp(const std::string& rest) {
    UdpEnd end;
    std::string port;
    const bool bracketed = !rest.empty() && rest[0] == '[';
    const std::size_t hostEnd = bracketed ? rest.find(']') : rest.rfind(':');
    if (bracketed && hostEnd == std::string::npos)
        return refuse("\"[\" without its \"]\"", udpExample);
    end.host = bracketed ? rest.substr(1, hostEnd - 1) : rest.substr(0, hostEnd);
    const std::size_t portStart = bracketed ? hostEnd + 1 : hostEnd;
    if (portStart < rest.size())
        port = rest.substr(portStart);

    if (end.host.empty() || end.host.find_first_of(" /?") != std::string::npos ||
        (!bracketed && end.host.find(':') != std::string::npos))
        return refuse("no host in \"udp://" + rest + "\"", udpExample);
    if (!port.empty()) {
        const std::optional<unsigned> number = parseNumber(port.substr(1), 1, 65535);
        if (port[0] != ':' || !number)
            return refuse("\"" + port + "\" is no port from 1 to 65535", udpExample);
        end.port = *number;
    }
    return {end, {}, {}};
}

bool applySerialSetting(SerialEnd& end, const std::string& key, const std::string& value) {
    using Parity = SerialEnd::Parity;
    std::optional<unsigned> number;
    if (key == "baud" && (number = parseNumber(value, 110, 4'000'000)))
        end.baud = *number;
    else if (key == "stop" && (number = parseNumber(value, 1, 2)))
        end.stopBits = *number;
    else if (key == "data" && (number = parseNumber(value, 8, 8)))
        end.dataBits = *number;
    else if (key == "parity" && (value == "none" || value == "even" || value == "odd"))
        end.parity = value == "none" ? Parity::None : value == "even" ? Parity::Even : Parity::Odd;
    else
        return false;
    return true;
}

ParsedLink parseSerial(const std::string& rest) {
    SerialEnd end;
    const std::size_t question = rest.find('?');
    end.device = rest.substr(0, question);
    if (end.device.empty())
        return refuse("no device in \"serial:" + rest + "\"", serialExample);
    std::size_t start = question == std::string::npos ? rest.size() : question + 1;
    while (start < rest.size()) {
        const std::size_t stop = std::min(rest.find('&', start), rest.size());
        const std::string setting = rest.substr(start, stop - start);
        const std::size_t equals = std::min(setting.find('='), setting.size());
        const std::string value = equals < setting.size() ? setting.substr(equals + 1) : "";
        if (!applySerialSetting(end, setting.substr(0, equals), value))
            return refuse("serial setting \"" + setting + "\" is not known", serialExample);
        start = stop + 1;
    }
    return {end, {}, {}};
}

std::string toText(const SerialEnd& end) {
    const char* const parities[] = {"none", "even", "odd"};
    return serialScheme + end.device + "?baud=" + std::to_string(end.baud) +
           "&parity=" + parities[static_cast<int>(end.parity)] + "&stop=" + std::to_string(end.stopBits);
}

std::string toText(const UdpEnd& end) {
    const bool bracketed = end.host.find(':') != std::string::npos;
    return udpScheme + (bracketed ? '[' + end.host + ']' : end.host) + ':' + std::to_string(end.port);
}

} // namespace

ParsedLink parseLinkUrl(const std::string& url) {
    if (startsWith(url, udpScheme))
        return parseUdp(url.substr(udpScheme.size()));
    if (startsWith(url, serialScheme))
        return parseSerial(url.substr(serialScheme.size()));
    return refuse("\"" + url + "\" is no line", udpExample + ", or serial:DEVICE?baud=N");
}

std::string toText(const LinkEnd& end) {
    return std::visit([](const auto& one) { return toText(one); }, end);
}

} // namespace host
