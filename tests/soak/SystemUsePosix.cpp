#include "SystemUse.h"

#include "Plant.h"
#include "ProcessFigures.h"

#include <gtest/gtest.h>

#include <fstream>

#include <unistd.h>

namespace {

std::size_t residentBytes() {
    std::ifstream file("/proc/self/statm");
    std::size_t all = 0;
    std::size_t resident = 0;
    file >> all >> resident;
    return resident * static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
}

} // namespace

SystemUse SystemUse::now() {
    SystemUse use;
    use.descriptors = openDescriptors();
    use.threads = runningThreads();
    use.allocated = allocatedBytes();
    use.resident = residentBytes();
    return use;
}

void expectNoMoreThan(const SystemUse& before, std::size_t growth) {
    const bool areAsMany = Plant::eventually(
        [&] { return runningThreads() <= before.threads && openDescriptors() <= before.descriptors; });
    EXPECT_TRUE(areAsMany) << runningThreads() << " threads, before " << before.threads << "; "
                           << openDescriptors() << " descriptors, before " << before.descriptors;
    EXPECT_LE(allocatedBytes(), before.allocated + growth);
}
