#include "SerialBreak.h"

#include <cerrno>

#include <sys/file.h>
#include <sys/ioctl.h>
#include <termios.h>

asio::error_code setBreak(SerialHandle handle, bool on, bool& supported) {
    if (ioctl(handle, on ? TIOCSBRK : TIOCCBRK) == 0)
        return {};
    const int error = errno;
    supported = error != ENOTTY && error != EINVAL && error != EOPNOTSUPP;
    return {supported ? error : 0, asio::error::get_system_category()};
}

asio::error_code claimDevice(SerialHandle handle) {
    if (flock(handle, LOCK_EX | LOCK_NB) == 0 || errno != EWOULDBLOCK)
        return {}; // a device that knows no locks is anybody's
    return {EBUSY, asio::error::get_system_category()};
}

void discardInput(SerialHandle handle) {
    tcflush(handle, TCIFLUSH);
}
