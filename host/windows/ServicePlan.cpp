#include "ServicePlan.h"

#include "ArgumentQuoting.h"

#include <QCryptographicHash>
#include <QString>
#include <QtEndian>

#include <algorithm>

namespace host {

namespace {

constexpr std::size_t longestName = 80; // letters; the system takes 256

bool isPlainLetterOrDigit(char letter) {
    return (letter >= 'a' && letter <= 'z') || (letter >= 'A' && letter <= 'Z') ||
           (letter >= '0' && letter <= '9');
}

} // namespace

std::string serviceNameFault(const std::string& name) {
    const bool isPlain = std::all_of(name.begin(), name.end(), [](char letter) {
        return isPlainLetterOrDigit(letter) || letter == '-' || letter == '_' || letter == '.';
    });
    if (!name.empty() && name.size() <= longestName && isPlain && isPlainLetterOrDigit(name.front()))
        return {};
    return "\"" + name +
           "\" is no name for a service: up to 80 letters from a to z, digits, \"-\", \"_\" and \".\", of "
           "which a letter or digit comes first";
}

std::string eventSourceOf(const std::string& serviceName) {
    return "sbus-host-" + serviceName;
}

// As the system makes it: of the SHA-1 of the name in capitals, five numbers of 32 bits.
std::string serviceSid(const std::string& serviceName) {
    const QString capitals = QString::fromStdString(serviceName).toUpper();
    QByteArray letters;
    for (const QChar letter : capitals) {
        letters += static_cast<char>(letter.unicode() & 0xFF);
        letters += static_cast<char>(letter.unicode() >> 8);
    }
    const QByteArray hash = QCryptographicHash::hash(letters, QCryptographicHash::Sha1);
    std::string sid = "S-1-5-80";
    for (int at = 0; at < hash.size(); at += 4)
        sid += '-' + std::to_string(qFromLittleEndian<quint32>(hash.constData() + at));
    return sid;
}

ServicePlan planService(const std::string& name, const std::string& program, const std::string& sitePath,
                        const std::vector<std::string>& runArguments) {
    std::vector<std::string> arguments{program, "service", "run", name, sitePath};
    arguments.insert(arguments.end(), runArguments.begin(), runArguments.end());
    return {name,
            "sbus-host " + name,
            "Polls the controllers of " + sitePath + " over S-Bus, and takes commands from sbus-host ctl.",
            "NT SERVICE\\" + name,
            joinArguments(arguments),
            eventSourceOf(name)};
}

} // namespace host
