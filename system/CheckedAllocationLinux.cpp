// The functions that memory is taken with, in front of those of the C library, for every part of a program
// that this file is linked into: Qt and the C library itself call them too, and do not look everywhere
// whether they were given something. Where the system gives nothing, the program ends as it does where new
// gives nothing; so none of these functions returns null but for no bytes at all.
//
// What is called next stays what it would be: a library that was loaded before all others, or the C library.
// free() is left to it. See docs/decisions/0012-who-gets-no-memory-ends-the-program.md.

#include "OutOfMemory.h"

#include <cerrno>
#include <cstddef>

#include <dlfcn.h>

#define SHOWN extern "C" __attribute__((visibility("default")))

namespace {

using Size = std::size_t;

struct Next {
    void* (*malloc)(Size) = nullptr;
    void* (*calloc)(Size, Size) = nullptr;
    void* (*realloc)(void*, Size) = nullptr;
    void* (*alignedAlloc)(Size, Size) = nullptr;
    int (*posixMemalign)(void**, Size, Size) = nullptr;
};

// Found by the first allocation of the process, which the loader or a library makes before there is a second
// thread.
Next next;

template <typename Function>
void find(Function*& function, const char* name) {
    function = reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

// False when it is the search itself that asks for memory: it can do without.
bool search() {
    static bool isSearching = false;
    if (isSearching)
        return false;
    isSearching = true;
    find(next.malloc, "malloc");
    find(next.calloc, "calloc");
    find(next.realloc, "realloc");
    find(next.alignedAlloc, "aligned_alloc");
    find(next.posixMemalign, "posix_memalign");
    return true;
}

bool isFound() {
    return next.posixMemalign != nullptr || search();
}

void* checked(void* area, Size size) {
    if (area == nullptr && size > 0)
        outofmemory::endProgram();
    return area;
}

} // namespace

SHOWN void* malloc(Size size) noexcept {
    return isFound() ? checked(next.malloc(size), size) : nullptr;
}

SHOWN void* calloc(Size count, Size size) noexcept {
    return isFound() ? checked(next.calloc(count, size), count > 0 ? size : 0) : nullptr;
}

SHOWN void* realloc(void* area, Size size) noexcept {
    return isFound() ? checked(next.realloc(area, size), size) : nullptr;
}

SHOWN void* aligned_alloc(Size alignment, Size size) noexcept {
    return isFound() ? checked(next.alignedAlloc(alignment, size), size) : nullptr;
}

SHOWN int posix_memalign(void** area, Size alignment, Size size) noexcept {
    if (!isFound())
        return ENOMEM;
    const int error = next.posixMemalign(area, alignment, size);
    if (error == ENOMEM && size > 0)
        outofmemory::endProgram();
    return error;
}
