#pragma once

#include "ListenAddress.h"
#include "NetworkRange.h"

#include <vector>

namespace host {

// How clients of the Modbus server see the site.
struct ModbusSettings {
    enum class Units {
        One, // one map of all RTUs, whatever unit id a request has
        Rtu, // each RTU has a unit id and a map of its own
    };
    enum class Points {
        All,    // by their order, or where their column says
        Listed, // those alone that have an address of their own
    };
    enum class Quality {
        Exception, // a request for a value that is not good gets an exception
        Bits,      // the last value; a block of discrete inputs tells which ones are good
    };
    // Which of its two registers holds the upper half of a value.
    enum class WordOrder { HighFirst, LowFirst };

    ListenAddress listen;
    std::vector<NetworkRange> allowed; // empty: whoever reaches it
    bool takesWrites = false;
    Units units = Units::One;
    Points points = Points::All;
    unsigned block = 1'000; // addresses that each RTU gets in each table of a common map
    Quality quality = Quality::Exception;
    WordOrder wordOrder = WordOrder::HighFirst;
};

} // namespace host
