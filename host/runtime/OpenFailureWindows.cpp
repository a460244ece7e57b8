#include "OpenFailureText.h"

#include <windows.h>

namespace host {

// A COM port is open to all users of a computer, and to one program at a time.
bool isInUse(int result) {
    return result == ERROR_ACCESS_DENIED || result == ERROR_SHARING_VIOLATION || result == ERROR_BUSY;
}

bool isUnreachable(int result) {
    return result == WSAEHOSTUNREACH || result == WSAENETUNREACH;
}

} // namespace host
