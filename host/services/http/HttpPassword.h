#pragma once

#include "HttpMessage.h"

#include <string>

namespace host {

// Whether a request brings this password: as the bearer token of its Authorization header, or as the password
// of a basic one, whose user may be any. How long the look takes tells nothing of the password but its
// length.
bool bringsPassword(const HttpRequest& request, const std::string& password);
// What a request without it gets.
HttpResponse askForPassword();

} // namespace host
