// A library to be loaded before all others of a program. It knows from where the program calls the system,
// and lets one of these calls fail, once.
//
// A place (FaultPlacePosix.h) is such a call together with what has led to it.
// - SBUS_FAULT_REPORT names a file. A place that is reached for the first time adds a line to it: the kind of
//   the call, the number, and the addresses by which a developer finds the place in the source.
// - SBUS_FAULT is "KIND NUMBER ERROR": the first call at this place fails with the system's error number, and
//   adds the line "failed" to the report.
//
// The system's own functions are asked directly, so that none of this calls itself. What the C library calls
// within itself is not seen; that is why its functions for files are among those below. Reading and writing
// the descriptors by which threads wake each other is left alone: Linux knows no failure of it.

#include "FaultPlacePosix.h"

#include <array>
#include <atomic>
#include <cerrno>
#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <dlfcn.h>
#include <fcntl.h>
#include <pthread.h>
#include <sys/epoll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/timerfd.h>
#include <sys/uio.h>
#include <unistd.h>

#define SHOWN extern "C" __attribute__((visibility("default")))

extern "C" void* __libc_malloc(std::size_t size);
extern "C" void* __libc_calloc(std::size_t count, std::size_t size);
extern "C" void* __libc_realloc(void* area, std::size_t size);
extern "C" void* __libc_memalign(std::size_t alignment, std::size_t size);

namespace {

constexpr std::size_t mostPlaces = 1 << 17;

struct Wanted {
    char kind[24] = "";
    std::uint64_t place = 0;
    int error = 0;
};

int report = -1;
Wanted wanted;
std::atomic<bool> isReady{false};
std::atomic<bool> hasFailed{false};
std::array<std::atomic<std::uint64_t>, mostPlaces> knownPlaces;

// Who finds no descriptor for one way of waiting may try another, for which there is none either.
thread_local bool failsAgain __attribute__((tls_model("initial-exec"))) = false;

// What this library itself calls is none of the program's.
thread_local bool isInside __attribute__((tls_model("initial-exec"))) = false;

class Inside {
public:
    Inside() { isInside = true; }
    Inside(const Inside&) = delete;
    Inside& operator=(const Inside&) = delete;
    ~Inside() { isInside = false; }
};

// False when it was known before.
bool note(std::uint64_t place) {
    for (std::size_t i = place % mostPlaces;; i = (i + 1) % mostPlaces) {
        std::uint64_t known = 0;
        if (knownPlaces[i].compare_exchange_strong(known, place))
            return true;
        if (known == place)
            return false;
    }
}

void tell(const char* line, std::size_t length) {
    if (report >= 0)
        syscall(SYS_write, report, line, length);
}

void tell(const char* kind, const Place& place) {
    char line[2048];
    int length =
        std::snprintf(line, sizeof line, "%s %llx", kind, static_cast<unsigned long long>(place.number));
    for (int i = 0; i < place.count; ++i) {
        const Frame& frame = place.frames[static_cast<std::size_t>(i)];
        const char* const slash = std::strrchr(frame.file, '/');
        length += std::snprintf(line + length, sizeof line - static_cast<std::size_t>(length), " %s+%llx",
                                slash != nullptr ? slash + 1 : frame.file,
                                static_cast<unsigned long long>(frame.offset));
        if (length >= static_cast<int>(sizeof line) - 100)
            break;
    }
    line[length++] = '\n';
    tell(line, static_cast<std::size_t>(length));
}

// Whether this call is the one that is to fail; errno says why then.
__attribute__((noinline)) bool fails(const char* kind) {
    if (!isReady.load(std::memory_order_acquire) || isInside)
        return false;
    const Inside inside;
    const int before = errno;
    const Place place = currentPlace(kind);
    if (note(place.number))
        tell(kind, place);
    errno = before;
    if (place.number != wanted.place || std::strcmp(kind, wanted.kind) != 0 || hasFailed.exchange(true))
        return false;
    tell("failed\n", 7);
    errno = wanted.error;
    return true;
}

template <typename Function>
Function* next(const char* name) {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

using ThreadStart = int(pthread_t*, const pthread_attr_t*, void* (*)(void*), void*);
using FileOpen = FILE*(const char*, const char*);
using FileWrite = std::size_t(const void*, std::size_t, std::size_t, FILE*);

ThreadStart* realThreadStart = nullptr;
FileOpen* realFileOpen = nullptr;
FileWrite* realFileWrite = nullptr;

__attribute__((constructor)) void prepare() {
    realThreadStart = next<ThreadStart>("pthread_create");
    realFileOpen = next<FileOpen>("fopen");
    realFileWrite = next<FileWrite>("fwrite");
    preparePlaces();
    if (const char* const fault = std::getenv("SBUS_FAULT")) {
        unsigned long long number = 0;
        if (std::sscanf(fault, "%23s %llx %d", wanted.kind, &number, &wanted.error) == 3)
            wanted.place = number;
    }
    if (const char* const path = std::getenv("SBUS_FAULT_REPORT")) {
        report = static_cast<int>(
            syscall(SYS_openat, AT_FDCWD, path, O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600));
        isReady.store(true, std::memory_order_release);
    }
}

template <typename... Arguments>
int call(long number, Arguments... arguments) {
    return static_cast<int>(syscall(number, arguments...));
}

// A file, a device or a socket; not what threads wake each other by.
bool isOutside(int file) {
    struct stat known {};
    const bool isKnown = call(SYS_newfstatat, file, "", &known, AT_EMPTY_PATH) == 0;
    return !isKnown || S_ISREG(known.st_mode) || S_ISCHR(known.st_mode) || S_ISSOCK(known.st_mode) ||
           S_ISFIFO(known.st_mode);
}

bool failsToWait() {
    failsAgain = fails("waits");
    return failsAgain;
}

bool failsToWaitInAnotherWay() {
    if (!failsAgain)
        return fails("waits");
    failsAgain = false;
    errno = wanted.error;
    return true;
}

int openFile(int directory, const char* path, int flags, mode_t mode) {
    return fails("open") ? -1 : call(SYS_openat, directory, path, flags, mode);
}

} // namespace

// The mode is there only with a flag; asking for one that is not there does no harm on the systems meant.
#define MODE_OF(flags)                                                                                       \
    mode_t mode = 0;                                                                                         \
    if (((flags) & (O_CREAT | O_TMPFILE)) != 0) {                                                            \
        va_list more;                                                                                        \
        va_start(more, flags);                                                                               \
        mode = va_arg(more, mode_t);                                                                         \
        va_end(more);                                                                                        \
    }

SHOWN int open(const char* path, int flags, ...) {
    MODE_OF(flags)
    return openFile(AT_FDCWD, path, flags, mode);
}

SHOWN int open64(const char* path, int flags, ...) {
    MODE_OF(flags)
    return openFile(AT_FDCWD, path, flags, mode);
}

SHOWN int openat(int directory, const char* path, int flags, ...) {
    MODE_OF(flags)
    return openFile(directory, path, flags, mode);
}

SHOWN int openat64(int directory, const char* path, int flags, ...) {
    MODE_OF(flags)
    return openFile(directory, path, flags, mode);
}

SHOWN FILE* fopen(const char* path, const char* mode) {
    return fails("open") ? nullptr : realFileOpen(path, mode);
}

SHOWN FILE* fopen64(const char* path, const char* mode) {
    return fails("open") ? nullptr : realFileOpen(path, mode);
}

SHOWN std::size_t fwrite(const void* data, std::size_t size, std::size_t count, FILE* file) {
    return fails("write") ? 0 : realFileWrite(data, size, count, file);
}

SHOWN ssize_t write(int file, const void* data, std::size_t length) {
    return isOutside(file) && fails("write") ? -1 : syscall(SYS_write, file, data, length);
}

SHOWN ssize_t writev(int file, const iovec* pieces, int count) {
    return isOutside(file) && fails("write") ? -1 : syscall(SYS_writev, file, pieces, count);
}

SHOWN ssize_t read(int file, void* data, std::size_t length) {
    return isOutside(file) && fails("read") ? -1 : syscall(SYS_read, file, data, length);
}

SHOWN ssize_t readv(int file, const iovec* pieces, int count) {
    return isOutside(file) && fails("read") ? -1 : syscall(SYS_readv, file, pieces, count);
}

SHOWN int rename(const char* from, const char* to) noexcept {
    return fails("rename") ? -1 : call(SYS_renameat, AT_FDCWD, from, AT_FDCWD, to);
}

SHOWN int mkdir(const char* path, mode_t mode) noexcept {
    return fails("mkdir") ? -1 : call(SYS_mkdirat, AT_FDCWD, path, mode);
}

SHOWN int socket(int domain, int type, int protocol) noexcept {
    return fails("socket") ? -1 : call(SYS_socket, domain, type, protocol);
}

SHOWN int bind(int socket, const sockaddr* address, socklen_t length) noexcept {
    return fails("bind") ? -1 : call(SYS_bind, socket, address, length);
}

SHOWN int connect(int socket, const sockaddr* address, socklen_t length) {
    return fails("connect") ? -1 : call(SYS_connect, socket, address, length);
}

SHOWN int listen(int socket, int waiting) noexcept {
    return fails("listen") ? -1 : call(SYS_listen, socket, waiting);
}

SHOWN int accept(int socket, sockaddr* address, socklen_t* length) {
    return fails("accept") ? -1 : call(SYS_accept4, socket, address, length, 0);
}

SHOWN int accept4(int socket, sockaddr* address, socklen_t* length, int flags) {
    return fails("accept") ? -1 : call(SYS_accept4, socket, address, length, flags);
}

SHOWN ssize_t send(int socket, const void* data, std::size_t length, int flags) {
    return fails("send") ? -1 : syscall(SYS_sendto, socket, data, length, flags, nullptr, 0);
}

SHOWN ssize_t sendto(int socket, const void* data, std::size_t length, int flags, const sockaddr* address,
                     socklen_t size) {
    return fails("send") ? -1 : syscall(SYS_sendto, socket, data, length, flags, address, size);
}

SHOWN ssize_t sendmsg(int socket, const msghdr* message, int flags) {
    return fails("send") ? -1 : syscall(SYS_sendmsg, socket, message, flags);
}

SHOWN ssize_t recv(int socket, void* data, std::size_t length, int flags) {
    return fails("receive") ? -1 : syscall(SYS_recvfrom, socket, data, length, flags, nullptr, nullptr);
}

SHOWN ssize_t recvmsg(int socket, msghdr* message, int flags) {
    return fails("receive") ? -1 : syscall(SYS_recvmsg, socket, message, flags);
}

SHOWN int epoll_create1(int flags) noexcept {
    return failsToWait() ? -1 : call(SYS_epoll_create1, flags);
}

SHOWN int eventfd(unsigned count, int flags) noexcept {
    return failsToWait() ? -1 : call(SYS_eventfd2, count, flags);
}

SHOWN int timerfd_create(clockid_t clock, int flags) noexcept {
    return failsToWait() ? -1 : call(SYS_timerfd_create, clock, flags);
}

SHOWN int epoll_create(int size) noexcept {
    return failsToWaitInAnotherWay() ? -1 : call(SYS_epoll_create1, size > 0 ? 0 : -1);
}

SHOWN int pipe(int* ends) noexcept {
    return failsToWaitInAnotherWay() ? -1 : call(SYS_pipe2, ends, 0);
}

SHOWN int pipe2(int* ends, int flags) noexcept {
    return failsToWaitInAnotherWay() ? -1 : call(SYS_pipe2, ends, flags);
}

SHOWN int pthread_create(pthread_t* thread, const pthread_attr_t* attributes, void* (*work)(void*),
                         void* argument) noexcept {
    return fails("thread") ? errno : realThreadStart(thread, attributes, work, argument);
}

SHOWN void* malloc(std::size_t size) noexcept {
    return fails("memory") ? nullptr : __libc_malloc(size);
}

SHOWN void* calloc(std::size_t count, std::size_t size) noexcept {
    return fails("memory") ? nullptr : __libc_calloc(count, size);
}

SHOWN void* realloc(void* area, std::size_t size) noexcept {
    return fails("memory") ? nullptr : __libc_realloc(area, size);
}

SHOWN void* aligned_alloc(std::size_t alignment, std::size_t size) noexcept {
    return fails("memory") ? nullptr : __libc_memalign(alignment, size);
}

SHOWN int posix_memalign(void** area, std::size_t alignment, std::size_t size) noexcept {
    *area = fails("memory") ? nullptr : __libc_memalign(alignment, size);
    return *area == nullptr ? ENOMEM : 0;
}
