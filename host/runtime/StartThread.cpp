#include "StartThread.h"

#include <system_error>
#include <utility>

namespace host {

std::thread startThread(const std::string& purpose, std::function<void()> work) {
    try {
        return std::thread(std::move(work));
    } catch (const std::system_error&) {
        throw ThreadRefused(threadRefusal(purpose));
    }
}

std::string threadRefusal(const std::string& purpose) {
    return "the system has no thread to give for " + purpose +
           "; raise its limits of processes and threads (ulimit -u) and of memory (ulimit -v), or end other "
           "programs";
}

} // namespace host
