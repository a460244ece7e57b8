#pragma once

#include <HalvexDriverLink/CLink.h>

#include <QByteArray>

#include <Hex.h>

#include <ostream>

// What one waiting call of a link gave.
struct Received {
    int result = 0;
    QByteArray bytes;

    bool operator==(const Received& other) const { return result == other.result && bytes == other.bytes; }
};

inline std::ostream& operator<<(std::ostream& out, const Received& received) {
    return out << received.result << " \"" << toHex(received.bytes).constData() << '"';
}

inline const Received nothing{0, {}};
inline const Received failed{-1, {}};

inline Received came(const char* text) {
    return {0, hex(text)};
}

inline Received receive(CLink& link, int capacity, int timeoutMs) {
    QByteArray buffer(capacity, '\0');
    int count = 0;
    const int result = link.receive(buffer.data(), capacity, count, timeoutMs);
    return {result, buffer.left(count)};
}

inline Received rxMessage(CLink& link, int wanted, int timeoutMs, int silenceMs = 20) {
    QByteArray buffer(wanted, '\0');
    int count = 0;
    const int result = link.rxMessage(buffer.data(), wanted, count, timeoutMs, silenceMs);
    return {result, buffer.left(count)};
}

inline int send(CLink& link, const QByteArray& bytes, int timeoutMs = 5000) {
    return link.send(bytes.constData(), bytes.size(), timeoutMs);
}
