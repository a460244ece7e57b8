#pragma once

#include <QByteArray>

// One telegram of a request.
struct SBusRequestItem {
    quint32 command = 0; // a sbus::CommandCode, or a number without a telegram
    quint32 count = 0;   // reads: elements minus one, as on the wire; writes: as their producer sets it
    quint32 address = 0; // first element; the low 16 bits go on the wire
    QByteArray data;     // writes: the payload as it goes on the wire; reads: empty
};

inline bool operator==(const SBusRequestItem& a, const SBusRequestItem& b) {
    return a.command == b.command && a.count == b.count && a.address == b.address && a.data == b.data;
}
