#include "DescriptorLimit.h"

namespace host {

// Pipes are handles here, of which a process may have millions.
std::size_t raiseDescriptorLimit(std::size_t wanted) {
    return wanted;
}

} // namespace host
