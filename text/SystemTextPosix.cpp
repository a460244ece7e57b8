#include "SystemText.h"

namespace text {

std::string systemText(const std::error_code& error) {
    return error.message();
}

} // namespace text
