#pragma once

// What a program does that the system has no memory for: whichever of its threads finds out says so on
// standard error, and the program ends at once, in order as far as others can see: with a status and without
// a crash.
namespace outofmemory {

// Sees to it from its making on. One in each program, which lives as long as that.
class Watch {
public:
    // `programName` begins the message; `exitStatus` is what the program ends with. `beforeTheEnd`, which
    // may be null, is called first; it must take no memory.
    Watch(const char* programName, int exitStatus, void (*beforeTheEnd)());
};

// For std::bad_alloc that was taken on its way.
[[noreturn]] void endProgram();
// With another reason. Takes no memory and waits for no other thread.
[[noreturn]] void endProgram(const char* why);

} // namespace outofmemory

// Before a static Watch: makes it before all other static objects, whose texts take memory, too.
#ifdef __GNUC__
#define MADE_FIRST [[gnu::init_priority(101)]]
#else
#define MADE_FIRST
#endif
