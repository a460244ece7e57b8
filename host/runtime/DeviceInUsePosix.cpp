#include "OpenFailureText.h"

#include <system_error>

namespace host {

bool isInUse(int result) {
    return std::error_code(result, std::system_category()) == std::errc::device_or_resource_busy;
}

} // namespace host
