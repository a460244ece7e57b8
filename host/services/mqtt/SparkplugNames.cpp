#include "SparkplugNames.h"

namespace host {

namespace {

const std::string space = "spBv1.0/";

std::string escaped(const std::string& name, const char* characters) {
    constexpr char digits[] = "0123456789ABCDEF";
    std::string text;
    for (const char one : name) {
        if (std::string(characters).find(one) == std::string::npos) {
            text += one;
            continue;
        }
        const auto code = static_cast<unsigned char>(one);
        text += '%';
        text += digits[code / 16];
        text += digits[code % 16];
    }
    return text;
}

} // namespace

std::string SparkplugNames::nodeTopic(const std::string& kind) const {
    return space + group + '/' + kind + '/' + edgeNode;
}

std::string SparkplugNames::deviceTopic(const std::string& kind, const std::string& device) const {
    return nodeTopic(kind) + '/' + device;
}

std::string sparkplugStateTopic(const std::string& host) {
    return space + "STATE/" + host;
}

std::string sparkplugDevice(const Channel& channel, const Rtu& rtu) {
    return escaped(channel.name, "/+#%.") + '.' + escaped(rtu.name, "/+#%");
}

} // namespace host
