#pragma once

#include "ExchangeTest.h"

#include <SBusSerialDriver.h>

// An exchange over a serial line.
class SerialExchangeTest : public ExchangeTest<SBusSerialDriver> {
protected:
    static constexpr int dataMode = 0;
    static constexpr int breakMode = 1;
    static constexpr int otherMode = 7;

    SerialExchangeTest() : ExchangeTest(std::make_unique<ScriptedLink>(CLink::serialKind)) {}

    unsigned readFlags(int mode) {
        driver->transmitMode = mode;
        return read({2, 8, 100, {}}, 2);
    }

    unsigned writeOutput(int mode) {
        driver->transmitMode = mode;
        return write({13, 0, 32, hex("00")});
    }

    QStringList drains() const { return link->calls.filter("receive 4096 "); }
};
