#include "Journal.h"

namespace host::journal {

bool takesErrors() {
    return false;
}

std::string mark(Severity) {
    return {};
}

} // namespace host::journal
