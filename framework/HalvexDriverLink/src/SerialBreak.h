#pragma once

#include <asio/serial_port.hpp>

// What Asio's serial port cannot do itself. One implementation per system.

using SerialHandle = asio::serial_port::native_handle_type;

// Starts or ends holding the line in break. A device that has no break is no error: `supported` becomes
// false.
asio::error_code setBreak(SerialHandle handle, bool on, bool& supported);
// Makes the device this process's own among all that ask for it, until it is closed: two masters on one line
// would spoil each other's telegrams. The error tells that another has it.
asio::error_code claimDevice(SerialHandle handle);
// Throws away what has arrived and is unread, also what is still on its way through the driver.
void discardInput(SerialHandle handle);
