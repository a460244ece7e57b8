#include "OpenFailureText.h"

#include <system_error>

namespace host {

bool isInUse(int result) {
    return std::error_code(result, std::system_category()) == std::errc::device_or_resource_busy;
}

bool isUnreachable(int result) {
    const std::error_code error(result, std::system_category());
    return error == std::errc::host_unreachable || error == std::errc::network_unreachable;
}

} // namespace host
