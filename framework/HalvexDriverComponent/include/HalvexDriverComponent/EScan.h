#pragma once

#include <QString>

// The protocol settings of one RTU as the device dialog edits them: decimal integers as text.
struct EScan {
    QString stationAddress;
    QString transmitType; // 0 Data Mode, 1 Break Mode
    QString breakDelay;   // milliseconds
};
