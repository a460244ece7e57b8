#include "SerialBreak.h"

#include <cerrno>

#include <sys/ioctl.h>
#include <termios.h>

asio::error_code setBreak(SerialHandle handle, bool on, bool& supported) {
    if (ioctl(handle, on ? TIOCSBRK : TIOCCBRK) == 0)
        return {};
    const int error = errno;
    supported = error != ENOTTY && error != EINVAL && error != EOPNOTSUPP;
    return {supported ? error : 0, asio::error::get_system_category()};
}

void discardInput(SerialHandle handle) {
    tcflush(handle, TCIFLUSH);
}
