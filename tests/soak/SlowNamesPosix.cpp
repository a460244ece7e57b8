#include "SlowNames.h"

#include <atomic>
#include <chrono>
#include <cstring>
#include <thread>

#include <dlfcn.h>
#include <netdb.h>

namespace {

std::atomic<int> inProgress{0};
std::atomic<bool> areToWait{false};

} // namespace

int lookupsInProgress() {
    return inProgress;
}

void letLookupsWait(bool wait) {
    areToWait = wait;
}

extern "C" __attribute__((visibility("default"))) int getaddrinfo(const char* name, const char* service,
                                                                  const addrinfo* hints, addrinfo** found) {
    if (name != nullptr && std::strcmp(name, slowName) == 0) {
        ++inProgress;
        while (areToWait)
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        --inProgress;
        return EAI_AGAIN;
    }
    return reinterpret_cast<decltype(&getaddrinfo)>(dlsym(RTLD_NEXT, "getaddrinfo"))(name, service, hints,
                                                                                     found);
}
