#include "OutOfMemory.h"

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <new>

namespace outofmemory {

namespace {

// Set before main() begins, and not changed any more. Libraries are made ready before that.
const char* program = "before main";
int status = 2;
void (*before)() = nullptr;

void tell(const char* text) {
    std::fputs(program, stderr);
    std::fputs(": ", stderr);
    std::fputs(text, stderr);
}

// What no catch has taken. Qt throws where malloc() gives nothing. All but a want of memory is a mistake of
// the program's, which ends as such.
[[noreturn]] void endUncaught() {
    try {
        if (const std::exception_ptr uncaught = std::current_exception())
            std::rethrow_exception(uncaught);
    } catch (const std::bad_alloc&) {
        endProgram();
    } catch (const std::exception& failure) {
        tell(failure.what());
    } catch (...) {
        tell("an unknown failure");
    }
    std::fputs("\n", stderr);
    std::abort();
}

} // namespace

Watch::Watch(const char* programName, int exitStatus, void (*beforeTheEnd)()) {
    program = programName;
    status = exitStatus;
    before = beforeTheEnd;
    std::set_new_handler(endProgram);
    std::set_terminate(endUncaught);
}

void endProgram() {
    endProgram("the system has no memory to give");
}

void endProgram(const char* why) {
    if (before != nullptr)
        before();
    tell(why);
    std::fputs("; the program ends at once\n", stderr);
    std::_Exit(status);
}

} // namespace outofmemory
