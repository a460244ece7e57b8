#include "FaultPlacePosix.h"

#include <cstdlib>
#include <cstring>

#include <dlfcn.h>
#include <execinfo.h>
#include <link.h>
#include <unistd.h>

namespace {

constexpr int mostFrames = 40;

char ownFolder[1024] = "";

// Mixes a number into a hash (FNV-1a, eight bytes at a time).
std::uint64_t mixed(std::uint64_t hash, std::uint64_t number) {
    return (hash ^ number) * 1099511628211ULL;
}

std::uint64_t hashOf(const char* text) {
    std::uint64_t hash = 14695981039346656037ULL;
    for (; *text != '\0'; ++text)
        hash = mixed(hash, static_cast<unsigned char>(*text));
    return hash;
}

// Without the allocations and locks of dladdr().
Frame frameOf(void* address) {
    dl_find_object found{};
    if (_dl_find_object(address, &found) != 0)
        return {};
    const link_map* const file = found.dlfo_link_map;
    const bool isProgram = file->l_name[0] == '\0';
    const bool isOwn = isProgram || std::strncmp(file->l_name, ownFolder, std::strlen(ownFolder)) == 0;
    return {isProgram ? "program" : file->l_name, reinterpret_cast<std::uintptr_t>(address) - file->l_addr,
            isOwn};
}

// The functions of the program's own that take memory, which call those below: the place is where they are
// called.
struct Code {
    const char* begin = nullptr;
    const char* end = nullptr;
};
const std::array<const char*, 5> memoryFunctions = {"malloc", "calloc", "realloc", "aligned_alloc",
                                                    "posix_memalign"};
std::array<Code, memoryFunctions.size()> checkingCode;

void findCheckingCode() {
    for (std::size_t i = 0; i < memoryFunctions.size(); ++i) {
        void* const function = dlsym(RTLD_DEFAULT, memoryFunctions[i]);
        Dl_info info{};
        const ElfW(Sym)* symbol = nullptr;
        if (dladdr1(function, &info, const_cast<void**>(reinterpret_cast<const void**>(&symbol)),
                    RTLD_DL_SYMENT) != 0 &&
            symbol != nullptr)
            checkingCode[i] = {static_cast<const char*>(function),
                               static_cast<const char*>(function) + symbol->st_size};
    }
}

bool isChecking(const void* address) {
    for (const Code& code : checkingCode)
        if (address >= code.begin && address < code.end)
            return true;
    return false;
}

} // namespace

void preparePlaces() {
    findCheckingCode();
    void* first[1];
    backtrace(first, 1); // loads what it needs
    const ssize_t length = readlink("/proc/self/exe", ownFolder, sizeof ownFolder - 1);
    ownFolder[length > 0 ? length : 0] = '\0';
    if (char* const slash = std::strrchr(ownFolder, '/'))
        slash[1] = '\0';
}

__attribute__((noinline)) Place currentPlace(const char* kind) {
    std::array<void*, mostFrames> addresses{};
    const int depth = backtrace(addresses.data(), mostFrames);
    Place place;
    place.number = hashOf(kind);
    constexpr int ofThisLibrary = 3;
    const int first = ofThisLibrary + (isChecking(addresses[ofThisLibrary]) ? 1 : 0);
    for (int i = first; i < depth && place.count < Place::most; ++i) {
        const Frame frame = frameOf(addresses[static_cast<std::size_t>(i)]);
        if (!frame.isOwn && i > first)
            continue;
        place.number = mixed(mixed(place.number, hashOf(frame.file)), frame.offset);
        place.frames[static_cast<std::size_t>(place.count++)] = frame;
    }
    return place;
}
