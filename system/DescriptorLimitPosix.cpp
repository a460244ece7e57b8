#include "DescriptorLimit.h"

#include <sys/resource.h>

namespace descriptors {

void raiseLimit() {
    rlimit known{};
    if (getrlimit(RLIMIT_NOFILE, &known) != 0)
        return;
    known.rlim_cur = known.rlim_max;
    setrlimit(RLIMIT_NOFILE, &known); // where it is refused, the limit stays as it is
}

std::size_t limit() {
    constexpr std::size_t leastPossible = 64; // what no system goes below
    rlimit known{};
    return getrlimit(RLIMIT_NOFILE, &known) == 0 ? static_cast<std::size_t>(known.rlim_cur) : leastPossible;
}

} // namespace descriptors
