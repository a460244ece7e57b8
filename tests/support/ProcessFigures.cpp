#include "ProcessFigures.h"

#include <ctime>
#include <filesystem>
#include <iterator>
#include <string>

#include <fcntl.h>
#include <malloc.h>
#include <sys/resource.h>
#include <unistd.h>

namespace {

int entriesOf(const std::string& directory) {
    const std::filesystem::directory_iterator entries(directory);
    return static_cast<int>(std::distance(begin(entries), end(entries)));
}

std::string folderOf(long process) {
    return "/proc/" + std::to_string(process);
}

std::chrono::nanoseconds processorTime(clockid_t clock) {
    timespec time{};
    clock_gettime(clock, &time);
    return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
}

} // namespace

int openDescriptors() {
    return entriesOf("/proc/self/fd");
}

int runningThreads() {
    return entriesOf("/proc/self/task");
}

int openDescriptors(long process) {
    return entriesOf(folderOf(process) + "/fd");
}

int runningThreads(long process) {
    return entriesOf(folderOf(process) + "/task");
}

bool allowDescriptors(std::size_t count) {
    rlimit limit{};
    if (getrlimit(RLIMIT_NOFILE, &limit) != 0)
        return false;
    if (limit.rlim_cur >= count)
        return true;
    limit.rlim_cur = count;
    return setrlimit(RLIMIT_NOFILE, &limit) == 0;
}

TakenDescriptors::TakenDescriptors(int count) {
    for (int i = 0; i < count; ++i) {
        const int descriptor = open("/dev/null", O_RDONLY | O_CLOEXEC);
        if (descriptor < 0)
            break;
        descriptors.push_back(descriptor);
    }
}

TakenDescriptors::~TakenDescriptors() {
    for (const int descriptor : descriptors)
        close(descriptor);
}

std::chrono::nanoseconds threadProcessorTime() {
    return processorTime(CLOCK_THREAD_CPUTIME_ID);
}

std::chrono::nanoseconds processProcessorTime() {
    return processorTime(CLOCK_PROCESS_CPUTIME_ID);
}

std::size_t allocatedBytes() {
    return mallinfo2().uordblks;
}
