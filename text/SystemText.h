#pragma once

#include <string>
#include <system_error>

namespace text {

// What the system says of an error, as UTF-8. Its own message may be in the code page of the user's language.
std::string systemText(const std::error_code& error);

} // namespace text
