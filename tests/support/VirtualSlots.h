#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

// The place of a virtual operation in its class's table of operations, counted from 0. A destructor takes
// two places. Host and plug-in are built apart and find each other's operations by this place alone.
//
// Under the Itanium ABI the first word of a pointer to a virtual member is 1 plus the byte offset in the
// table; on ARM it is the offset itself, and the mark is the lowest bit of the second word.
template <typename Member>
std::size_t slotOf(Member member) {
    std::uintptr_t words[2] = {};
    static_assert(sizeof(member) == sizeof(words), "a pointer to a member is two words");
    std::memcpy(words, &member, sizeof(words));
#if defined(__arm__) || defined(__aarch64__)
    return words[0] / sizeof(void*);
#else
    return (words[0] - 1) / sizeof(void*);
#endif
}

// Whether the member is virtual at all: what slotOf takes for granted.
template <typename Member>
bool isVirtual(Member member) {
    std::uintptr_t words[2] = {};
    static_assert(sizeof(member) == sizeof(words), "a pointer to a member is two words");
    std::memcpy(words, &member, sizeof(words));
#if defined(__arm__) || defined(__aarch64__)
    return (words[1] & 1) != 0;
#else
    return (words[0] & 1) != 0;
#endif
}
