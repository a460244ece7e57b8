#pragma once

#include "Hex.h"
#include "services/modbus/ModbusFrame.h"

#include <string>

// "03 00 00 00 02" to bytes, and back.
inline host::ModbusPdu bytes(const char* text) {
    const QByteArray read = hex(text);
    return {read.begin(), read.end()};
}

inline std::string text(const std::vector<std::uint8_t>& bytes) {
    return toHex({reinterpret_cast<const char*>(bytes.data()), static_cast<int>(bytes.size())}).toStdString();
}
