#include "DescriptorLimit.h"

#include <algorithm>
#include <sys/resource.h>

namespace host {

std::size_t raiseDescriptorLimit(std::size_t wanted) {
    constexpr std::size_t leastPossible = 64; // what no system goes below
    rlimit limit{};
    if (getrlimit(RLIMIT_NOFILE, &limit) != 0)
        return leastPossible;
    if (limit.rlim_cur < wanted && limit.rlim_cur < limit.rlim_max) {
        rlimit raised = limit;
        raised.rlim_cur = std::min<rlim_t>(wanted, limit.rlim_max);
        if (setrlimit(RLIMIT_NOFILE, &raised) == 0)
            limit = raised;
    }
    return static_cast<std::size_t>(std::min<rlim_t>(limit.rlim_cur, wanted));
}

} // namespace host
