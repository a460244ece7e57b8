#pragma once

#include "Layout.h"

namespace host {

// Fills in what gives a point this value, or why it cannot be given.
void addCommand(CommandRequest& request, const PointRef& ref, double value);

} // namespace host
