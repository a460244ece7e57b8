#include "OutputReader.h"

#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

namespace outputreader {

bool isGone() {
    struct stat found {};
    if (fstat(STDOUT_FILENO, &found) != 0 || !(S_ISFIFO(found.st_mode) || S_ISSOCK(found.st_mode)))
        return false;
    pollfd output{STDOUT_FILENO, 0, 0}; // errors are told unasked
    return poll(&output, 1, 0) == 1 && (output.revents & (POLLERR | POLLHUP)) != 0;
}

} // namespace outputreader
