#include "FailureText.h"

namespace host {

namespace {

bool contains(const std::string& text, const char* part) {
    return text.find(part) != std::string::npos;
}

std::string cannotOpen(const Channel& channel) {
    const std::string lines =
        toText(channel.primary) + (channel.secondary ? " or " + toText(*channel.secondary) : "");
    return "cannot open " + lines +
           (channel.type == LineType::Serial
                ? "; check that the device is there, is not in use and may be opened by this user"
                : "; check the host name and the network");
}

std::string noAnswer(const Channel& channel, const Rtu& rtu, bool onSecondary) {
    const LinkEnd& end = onSecondary && channel.secondary ? *channel.secondary : channel.primary;
    std::string text = "no complete answer within " + std::to_string(rtu.timeout.count()) +
                       " ms; check that the controller is on and has station number " +
                       std::to_string(rtu.station);
    if (channel.type == LineType::Ethernet)
        return text + ", and that " + toText(end) + " is its address";
    const SerialEnd* const serial = std::get_if<SerialEnd>(&end);
    return text + ", the cable at " + (serial == nullptr ? "" : serial->device) + ", and that it is set to " +
           std::to_string(serial == nullptr ? 0 : serial->baud) + " baud and transmit type " +
           toText(rtu.transmitType);
}

std::string badAnswer(const Channel& channel, const std::string& protocolError) {
    if (isRefusal(protocolError))
        return "the controller refused a request (" + protocolError +
               "); check that every element of its points exists in it";
    if (contains(protocolError, "CRC"))
        return "an answer arrived damaged; check " + std::string(channel.type == LineType::Serial
                                                                     ? "cable, termination and baud rate"
                                                                     : "the network");
    return "an answer was not the one to the request" +
           (protocolError.empty() ? "" : " (" + protocolError + ")") +
           (channel.type == LineType::Serial ? "; check the transmit type, and for another master on the line"
                                             : "; check for answers later than the time-out");
}

} // namespace

bool isRefusal(const std::string& protocolError) {
    return contains(protocolError, "Nak Error") || contains(protocolError, "Ack Error");
}

bool isRefusedRead(TransmitType type, const std::string& hexBytes) {
    if (type == TransmitType::Data)
        return hexBytes.compare(0, 5, "B5 02") == 0; // the attribute of an acknowledge
    // One byte and nothing behind it: the rest of the driver's buffer is still zero.
    return hexBytes.compare(0, 2, "15") == 0 && hexBytes.find_first_not_of("0 ", 2) == std::string::npos;
}

bool isRefusedWrite(TransmitType type, const std::string& hexBytes) {
    const std::string acknowledge = "B5 02 00 00";
    return isRefusedRead(type, hexBytes) &&
           (type == TransmitType::Break || hexBytes.compare(0, acknowledge.size(), acknowledge) != 0);
}

std::string nameOf(const Channel& channel, const Rtu* rtu) {
    std::string text = "channel " + std::to_string(channel.id) + " \"" + channel.name + "\"";
    if (rtu != nullptr)
        text += ", RTU " + std::to_string(rtu->id) + " \"" + rtu->name + "\" (station " +
                std::to_string(rtu->station) + ")";
    return text;
}

std::string failureReason(const Channel& channel, const Rtu* rtu, const std::string& logText,
                          const std::string& protocolError, bool onSecondary) {
    if (contains(logText, "Error opening channel"))
        return cannotOpen(channel);
    if (rtu != nullptr && contains(logText, "Timeout") && !isRefusal(protocolError))
        return noAnswer(channel, *rtu, onSecondary);
    if (rtu != nullptr && contains(logText, "Chennel Error"))
        return channel.type == LineType::Ethernet
                   ? noAnswer(channel, *rtu, onSecondary)
                   : "the line failed; check that device and cable are still plugged in";
    if (contains(logText, "Bad Data") || contains(logText, "Timeout"))
        return badAnswer(channel, protocolError);
    return logText;
}

} // namespace host
