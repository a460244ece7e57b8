#pragma once

#include "site/Finding.h"

#include <string>

namespace host::journal {

// Whether standard error goes straight to the journal of the system, which has a time for each line and takes
// a priority in front of it. $JOURNAL_STREAM alone does not tell: a child whose errors go elsewhere inherits
// it.
bool takesErrors();
// The priority in front of a line for standard error, as "<3>"; empty where the journal does not read it.
std::string mark(Severity severity);

} // namespace host::journal
