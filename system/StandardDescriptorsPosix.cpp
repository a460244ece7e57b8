#include "StandardDescriptors.h"

#include <fcntl.h>
#include <initializer_list>
#include <unistd.h>

// Each is opened on the lowest free number, which is its own.
void openClosedStandardDescriptors() {
    for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
        if (fcntl(descriptor, F_GETFD) == -1 &&
            open("/dev/null", descriptor == STDIN_FILENO ? O_RDONLY : O_WRONLY) != descriptor)
            _exit(1); // there is no null device, and nobody could be told
}
