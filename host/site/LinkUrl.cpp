#include "LinkUrl.h"

#include "BaudRate.h"
#include "Number.h"

#include <ControlCharacters.h>

#include <algorithm>
#include <limits>
#include <set>

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

template <typename End>
ParsedLink result(const End& end, std::vector<LinkFault> faults) {
    return {faults.empty() ? std::optional<LinkEnd>(end) : std::nullopt, std::move(faults)};
}

ParsedLink parseUdp(const std::string& rest) {
    UdpEnd end;
    std::vector<LinkFault> faults;
    const bool bracketed = !rest.empty() && rest[0] == '[';
    const std::size_t hostEnd = bracketed ? rest.find(']') : rest.rfind(':');
    if (bracketed && hostEnd == std::string::npos)
        return result(end, {{"\"[\" without its \"]\"", udpExample}});
    end.host = bracketed ? rest.substr(1, hostEnd - 1) : rest.substr(0, hostEnd);
    if (!bracketed && std::count(rest.begin(), rest.end(), ':') > 1)
        return result(end, {{"\"" + rest + "\" is an IPv6 address without its brackets",
                             "write udp://[" + rest + "], or udp://[" + rest + "]:5050 with a port"}});
    if (end.host.empty() || end.host.find_first_of(" /?") != std::string::npos ||
        (!bracketed && end.host.find(':') != std::string::npos))
        faults.push_back({"no host in \"udp://" + rest + "\"", udpExample});

    const std::size_t portStart = bracketed ? hostEnd + 1 : hostEnd;
    if (portStart < rest.size()) {
        const std::string port = rest.substr(portStart);
        const std::optional<unsigned> number = parseNumber(port.substr(1), 1, 65535);
        if (port[0] == ':' && number)
            end.port = *number;
        else
            faults.push_back({"\"" + port + "\" is no port from 1 to 65535", udpExample});
    }
    return result(end, std::move(faults));
}

std::optional<LinkFault> takeBaud(SerialEnd& end, const std::string& value) {
    const std::optional<unsigned> baud = parseNumber(value, 1, std::numeric_limits<unsigned>::max());
    if (!baud)
        return LinkFault{"baud \"" + value + "\" is no whole number above 0", "write baud=9600, or another"};
    if (!isKnownBaudRate(*baud))
        return LinkFault{value + " is no baud rate that this system knows",
                         "the nearest that it knows: " + nearestBaudRates(*baud)};
    end.baud = *baud;
    return std::nullopt;
}

std::optional<LinkFault> takeParity(SerialEnd& end, const std::string& value) {
    using Parity = SerialEnd::Parity;
    if (value != "none" && value != "even" && value != "odd")
        return LinkFault{"parity \"" + value + "\" is not known", "write parity=none, even or odd"};
    end.parity = value == "none" ? Parity::None : value == "even" ? Parity::Even : Parity::Odd;
    return std::nullopt;
}

std::optional<LinkFault> takeStopBits(SerialEnd& end, const std::string& value) {
    const std::optional<unsigned> number = parseNumber(value, 1, 2);
    if (!number)
        return LinkFault{"stop \"" + value + "\" is no number of stop bits", "write stop=1 or stop=2"};
    end.stopBits = *number;
    return std::nullopt;
}

std::optional<LinkFault> takeDataBits(SerialEnd&, const std::string& value) {
    return value == "8" ? std::nullopt
                        : std::optional(LinkFault{"data \"" + value + "\" will not do",
                                                  "telegrams are made of bytes: write data=8, or nothing"});
}

struct SerialSetting {
    const char* key;
    std::optional<LinkFault> (*take)(SerialEnd&, const std::string& value);
};
constexpr SerialSetting serialSettings[] = {
    {"baud", takeBaud}, {"parity", takeParity}, {"stop", takeStopBits}, {"data", takeDataBits}};

std::optional<LinkFault> takeSetting(SerialEnd& end, const std::string& setting,
                                     std::set<std::string>& takenKeys) {
    const std::size_t equals = setting.find('=');
    const std::string key = setting.substr(0, equals);
    const auto* const known = std::find_if(std::begin(serialSettings), std::end(serialSettings),
                                           [&key](const SerialSetting& one) { return one.key == key; });
    if (equals == std::string::npos || known == std::end(serialSettings))
        return LinkFault{"serial setting \"" + setting + "\" is not known", serialExample};
    if (!takenKeys.insert(key).second)
        return LinkFault{key + " is given twice", "keep one of the two"};
    return known->take(end, setting.substr(equals + 1));
}

ParsedLink parseSerial(const std::string& rest) {
    SerialEnd end;
    std::vector<LinkFault> faults;
    std::set<std::string> takenKeys;
    const std::size_t question = rest.find('?');
    end.device = rest.substr(0, question);
    if (end.device.empty())
        faults.push_back({"no device in \"serial:" + rest + "\"", serialExample});
    std::size_t start = question == std::string::npos ? rest.size() : question + 1;
    while (start < rest.size()) {
        const std::size_t stop = std::min(rest.find('&', start), rest.size());
        if (std::optional<LinkFault> fault = takeSetting(end, rest.substr(start, stop - start), takenKeys))
            faults.push_back(std::move(*fault));
        start = stop + 1;
    }
    return result(end, std::move(faults));
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
    if (text::findControl(url) != std::string::npos)
        return {std::nullopt, {{"\"" + url + "\" holds a control character", "take it out"}}};
    if (startsWith(url, udpScheme))
        return parseUdp(url.substr(udpScheme.size()));
    if (startsWith(url, serialScheme))
        return parseSerial(url.substr(serialScheme.size()));
    return {std::nullopt, {{"\"" + url + "\" is no line", udpExample + ", or serial:DEVICE?baud=N"}}};
}

std::string toText(const LinkEnd& end) {
    return std::visit([](const auto& one) { return toText(one); }, end);
}

} // namespace host
