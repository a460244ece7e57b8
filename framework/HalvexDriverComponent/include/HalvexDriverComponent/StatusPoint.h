#pragma once

#include <QString>

// A binary point. The input addresses are split in place by the driver when it builds its polls: the
// address keeps the media letter, the number field takes the element number. The output addresses stay as
// configured.
struct StatusPoint {
    unsigned number = 0; // the point's identity within its RTU
    QString name;

    QString firstAddress;
    QString firstAddressNumber;
    QString secondAddress;
    QString secondAddressNumber;

    QString firstOutputAddress;
    QString firstOutputValue;
    QString secondOutputAddress;
    QString secondOutputValue;
    bool pulse = false; // the output is released after the pulse width
    unsigned pulseWidthMs = 0;
};
