#pragma once

#include <QString>

// An analog point. The address is split in place by the driver when it builds its polls: the address
// keeps the media letter, the number field takes the element number.
struct AnalogPoint {
    unsigned number = 0;   // the point's identity within its RTU
    unsigned dataType = 0; // a Halvex::PointDataType, or a code of the host's own
    QString name;
    QString address;
    QString addressNumber;
};
