#pragma once

#include "Exchange.h"
#include "site/Site.h"

namespace host {

// How the telegrams of such a line are framed. The transmit type counts on serial lines alone.
Framing framingOf(LineType line, TransmitType type);

} // namespace host
