#include "SerialBreak.h"

#include <windows.h>

asio::error_code setBreak(SerialHandle handle, bool on, bool& supported) {
    if (on ? SetCommBreak(handle) : ClearCommBreak(handle))
        return {};
    const DWORD error = GetLastError();
    supported = error != ERROR_INVALID_FUNCTION && error != ERROR_NOT_SUPPORTED;
    return {supported ? static_cast<int>(error) : 0, asio::error::get_system_category()};
}

asio::error_code claimDevice(SerialHandle) {
    return {}; // an open device is its opener's alone
}

void discardInput(SerialHandle handle) {
    PurgeComm(handle, PURGE_RXCLEAR);
}
