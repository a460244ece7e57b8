#pragma once

#include <functional>

#include <fcntl.h>
#include <grp.h>
#include <sys/wait.h>
#include <unistd.h>

// Another user of the machine, played by a child process that becomes one where this process is root.
// Elsewhere the child stays the same user, and tests give the code under test the number of another one as
// its own.
namespace seconduser {

constexpr unsigned id = 12345; // nobody's on usual systems, and its group's
constexpr unsigned sharedGroup = 54321;

inline bool isReal() {
    return geteuid() == 0;
}

// As whom the code under test has to see itself so that the second user is somebody else.
inline unsigned firstUser() {
    return isReal() ? geteuid() : geteuid() + 1;
}
// A group that the second user is a member of, and one that it is not.
inline unsigned itsGroup() {
    return isReal() ? sharedGroup : getegid();
}
inline unsigned foreignGroup() {
    return itsGroup() + 1;
}

// Runs `work` as the second user and returns what it returns, up to 100, or -1 when that did not come about.
// After a fork in a process with threads only plain system calls are safe.
inline int run(const std::function<int()>& work) {
    const gid_t group = sharedGroup;
    const pid_t child = fork();
    if (child == 0) {
        if (isReal() && (setgroups(1, &group) != 0 || setgid(id) != 0 || setuid(id) != 0))
            _exit(101);
        _exit(work());
    }
    int status = 0;
    if (child < 0 || waitpid(child, &status, 0) != child || !WIFEXITED(status))
        return -1;
    return WEXITSTATUS(status) > 100 ? -1 : WEXITSTATUS(status);
}

} // namespace seconduser
